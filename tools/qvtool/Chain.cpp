#include "Chain.h"

#include <utility>

#include "Error.h"

namespace qvtool {
namespace {

// What goes wrong in a step is said with its label.
template <class Function>
auto Labelled(const std::string& label, const Function& function) {
  if (label.empty()) return function();
  try {
    return function();
  } catch (const UsageError& error) {
    throw UsageError(label + ": " + error.what());
  } catch (const Error& error) {
    throw Error(label + ": " + error.what());
  }
}

}  // namespace

void Chain::Append(std::string label, std::unique_ptr<Step> step) {
  links_.push_back({std::move(label), std::move(step), {}});
}

void Chain::Begin(InputSpec& input, const OutputSpec& output) {
  for (Link& link : links_) Labelled(link.label, [&] { link.step->Begin(input, output); });
  if (!links_.empty())
    input.decode.reduction = [step = links_.front().step.get()](IppiSize size) {
      return step->Reduction(size);
    };
}

Frame& Chain::operator()(Frame& in) {
  Frame* frame = &in;
  for (Link& link : links_) {
    link.before = frame->FullSize();
    link.out.Inherit(*frame);
    frame = Labelled(link.label, [&] { return &(*link.step)(*frame, link.out); });
    link.after = frame->Size();
  }
  return *frame;
}

VideoFields Chain::Fields(VideoFields fields) const {
  for (const Link& link : links_) fields = link.step->Fields(fields, link.before, link.after);
  return fields;
}

}  // namespace qvtool
