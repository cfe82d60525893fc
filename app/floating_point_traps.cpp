/// \file floating_point_traps.cpp
/// Switches the floating-point traps on before main() runs. Belongs to executables (program and tests) as an object
/// file: a linker would drop it from a library, since nobody refers to it.

#include <fenv.h>

namespace {

/// A NaN, an infinity or a division by zero anywhere ends the run by SIGFPE instead of reaching a product.
/// Underflow, inexact and denormal results stay masked: they are everyday rounding.
struct FLOATING_POINT_TRAPS {
    FLOATING_POINT_TRAPS() { feenableexcept(FE_INVALID | FE_DIVBYZERO | FE_OVERFLOW); }
};

const FLOATING_POINT_TRAPS kFloatingPointTraps;

}  // namespace
