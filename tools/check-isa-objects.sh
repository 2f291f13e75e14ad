#!/usr/bin/env bash
# Checks the per-instruction-set objects of the vector library:
#  - the SSE3 and SSE4.1 members contain no VEX-encoded instruction and no ymm
#    register, so they run on processors without AVX;
#  - the SSE3 member contains none of the SSSE3 or SSE4.1 instructions the
#    compiler would use (rounding, blends, 32-bit multiplies, inserts, extracts);
#  - no member defines code outside its own namespaces that the linker could
#    merge with another member's copy (weak or global functions other than the
#    member class itself).
# Usage: check-isa-objects.sh <object files of zolk_toolkit_isa...>
set -euo pipefail

status=0
for obj in "$@"; do
  name="$(basename "$obj")"
  case "$name" in
    HVNSSE3.cpp.o|HVNSSE41.cpp.o)
      # VEX instructions disassemble with a leading "v" mnemonic (vmovaps,
      # vzeroupper, ...); match mnemonics only, not symbol names.
      bad="$(objdump -d --no-show-raw-insn "$obj" \
        | awk -F'\t' 'NF >= 2 && ($2 ~ /^v[a-z0-9]+/ || $0 ~ /%ymm/) && shown++ < 5 { print }')"
      if [ -n "$bad" ]; then
        echo "FAIL: $name contains VEX-encoded instructions or ymm registers:"
        echo "$bad"
        status=1
      else
        echo "ok: $name has no VEX instructions"
      fi
      ;;
  esac
  if [ "$name" = HVNSSE3.cpp.o ]; then
    bad="$(objdump -d --no-show-raw-insn "$obj" | awk -F'\t' 'NF >= 2 && $2 ~ /^(round|blendv?p|pblend|pmulld|pminsd|pmaxsd|pminud|pmaxud|ptest|insertps|extractps|pextr[bdq]|pinsr[bdq]|pmovsx|pmovzx|dpp|pshufb|palignr|pabs|phadd|phsub|pcmpeqq|packusdw)/ && shown++ < 5 { print }')"
    if [ -n "$bad" ]; then
      echo "FAIL: $name contains instructions newer than SSE3:"
      echo "$bad"
      status=1
    else
      echo "ok: $name has nothing newer than SSE3"
    fi
  fi
  case "$name" in
    HVNSSE3.cpp.o|HVNSSE41.cpp.o|HVNAVX.cpp.o|HVNAVXFMA.cpp.o|HVNAVX2FMA.cpp.o)
      class="${name%.cpp.o}"
      shared="$(nm -C --defined-only "$obj" | awk '$2 ~ /^[TW]$/' \
        | grep -v -e 'hvn_isa_' -e 'xsimd_' -e " ${class}::" || true)"
      if [ -n "$shared" ]; then
        echo "FAIL: $name defines code outside its namespaces:"
        echo "$shared"
        status=1
      else
        echo "ok: $name keeps its code in its own namespaces"
      fi
      ;;
  esac
done
exit $status
