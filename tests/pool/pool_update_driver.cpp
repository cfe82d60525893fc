/// pool_update_driver POOL [open]: updates three entries of the pool, or only opens it. Test of kills and failing
/// system calls run it; its log shows warnings and errors only, on standard output.

#include <cstdio>
#include <string>

#include "lib/baselib/pool/parameter_pool_read_write_change.h"

int main(int argc, char** argv) {
    Log().SetScreenThreshold(static_cast<int>(LOGGING_LEVEL::WARNING));
    Log().SetFileThreshold(static_cast<int>(LOGGING_LEVEL::NO_MESSAGE));
    try {
        PARAMETER_POOL_READ_WRITE_CHANGE pool(argv[1]);
        if (argc > 2) return 0;
        ARRAY<double> vector(0, 20'000);  // several write calls
        for (int i = 0; i < vector.Count(); ++i) vector[i] = i / 7.0;
        pool.Change("second", 22);
        pool.Change("vector", vector);
        pool.Change("new", std::string("appended"));
        pool.Update();
        return 0;
    } catch (const ERROR_EXCEPTION& error) {
        std::printf("%s\n", error.Message().c_str());
        return 1;
    }
}
