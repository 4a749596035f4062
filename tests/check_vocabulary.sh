#!/bin/bash
# Intrinsics, their types and headers, and the macros that say what the compiler may use stand in
# kernels/level/ alone: row sources ask the vocabulary.
set -u
kernels=$1
headers='\w*intrin\.h|\barm_\w+\.h'
intrinsics="\b_mm[0-9]*_|\b__m(64|128|256|512)|\b__mmask|\b_MM_|\b__builtin_ia32_|$headers"
macros='\b__(MMX|SSE|SSSE|AVX|FMA|F16C|BMI|GFNI|V?PCLMUL|POPCNT|ARM|aarch64|x86_64|i386|amd64)'
others='\bQV_(V_)?(BITS_)?OP\b|\b__attribute__\(\(target|\basm\b'
grep -qrE "$intrinsics" "$kernels/level" || { echo "no intrinsics in $kernels/level"; exit 1; }
if grep -rnE "$intrinsics|$macros|$others" "$kernels" --include='*.h' --include='*.cpp' \
    --exclude-dir=level; then
  echo "belongs in $kernels/level"
  exit 1
fi
