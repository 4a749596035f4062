#include "Words.h"

#include <string_view>

#include "Error.h"

namespace qvtool {
namespace {

class Splitter {
 public:
  explicit Splitter(const std::string& text) : text_(text) {}

  std::vector<std::vector<std::string>> Commands() {
    while (at_ < text_.size()) {
      const char c = text_[at_++];
      if (c == ';') {
        EndCommand();
      } else if (std::string_view(" \t\n").find(c) != std::string_view::npos) {
        EndWord();
      } else {
        inWord_ = true;  // also for '', which is a word
        Take(c);
      }
    }
    EndCommand();
    return commands_;
  }

 private:
  void Take(char c) {
    if (c == '\'' || c == '"')
      TakeQuoted(c);
    else
      word_ += c == '\\' && at_ < text_.size() ? text_[at_++] : c;
  }

  void TakeQuoted(char quote) {
    const std::size_t begin = at_;
    for (; at_ < text_.size() && text_[at_] != quote; ++at_) {
      const char next = at_ + 1 < text_.size() ? text_[at_ + 1] : '\0';
      const bool escapes = quote == '"' && text_[at_] == '\\' && (next == '"' || next == '\\');
      if (escapes) ++at_;
      word_ += text_[at_];
    }
    if (at_ == text_.size())
      throw UsageError(std::string("the quote ") + quote + " before '" + text_.substr(begin) +
                       "' is not closed");
    ++at_;
  }

  void EndWord() {
    if (inWord_) words_.push_back(word_);
    word_.clear();
    inWord_ = false;
  }

  void EndCommand() {
    EndWord();
    if (!words_.empty()) commands_.push_back(words_);
    words_.clear();
  }

  const std::string& text_;
  std::size_t at_ = 0;
  bool inWord_ = false;
  std::string word_;
  std::vector<std::string> words_;
  std::vector<std::vector<std::string>> commands_;
};

}  // namespace

std::vector<std::vector<std::string>> SplitCommands(const std::string& text) {
  return Splitter(text).Commands();
}

}  // namespace qvtool
