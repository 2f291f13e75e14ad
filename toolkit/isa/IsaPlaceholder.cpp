// Replaced by the per-instruction-set members of the vector library.
namespace zolk_isa_placeholder { int unused = 0; }
