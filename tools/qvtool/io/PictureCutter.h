// Pictures one after the other, cut apart where one ends.
#ifndef QV_TOOLS_QVTOOL_IO_PICTURECUTTER_H
#define QV_TOOLS_QVTOOL_IO_PICTURECUTTER_H

#include <string_view>

#include "io/ByteSource.h"
#include "io/Pictures.h"

namespace qvtool {

class PictureCutter {
 public:
  explicit PictureCutter(ByteSource& source) : source_(source) {}

  // The first bytes of what follows, fewer than twelve only at the end. Bytes of 0 before it, with
  // which some programs fill files up, are left out.
  std::string_view Peek();
  // The picture that follows, all that is left if its end cannot be told.
  Bytes Cut(FileFormat format);

 private:
  bool Has(std::size_t bytes);
  std::size_t All();
  std::size_t Number(std::size_t at, int bytes) const;  // the most significant byte first
  std::size_t EndOfPng();
  std::size_t EndOfJpeg();
  std::size_t EndOfWebp();
  std::size_t EndOfNetpbm();

  ByteSource& source_;
  Bytes ahead_;
};

}  // namespace qvtool

#endif
