// Fields to frames and back as functions of C.
#include "qvAcceleratedLib/Fields.h"

#include "qvAcceleratedLib/qv.h"

static_assert(int{QV_TOP_FIELD_FIRST} == qv::TopFieldFirst);
static_assert(int{QV_BOTTOM_FIELD_FIRST} == qv::BottomFieldFirst);

int qv_deinterlace_bob(const unsigned char* src, int src_step, unsigned char* first,
                       int first_step, unsigned char* second, int second_step, qv_size size,
                       int field_order, int centre_weight) {
  return qv::DeinterlaceBob(src, src_step, first, first_step, second, second_step,
                            {size.width, size.height}, field_order, centre_weight);
}

int qv_weave(const unsigned char* first, int first_step, const unsigned char* second,
             int second_step, unsigned char* dst, int dst_step, qv_size size, int field_order) {
  return qv::Weave(first, first_step, second, second_step, dst, dst_step,
                   {size.width, size.height}, field_order);
}
