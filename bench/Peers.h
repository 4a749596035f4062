// Headers of the peers that several families are measured beside, as far as they were found.
#ifndef QV_BENCH_PEERS_H
#define QV_BENCH_PEERS_H

#if defined(QV_BENCH_OPENCV)
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif
#if defined(QV_BENCH_LIBYUV)
#include <libyuv.h>
#endif
#if defined(QV_BENCH_PIXMAN)
#include <pixman.h>
#endif

#endif
