/// pool_update_driver POOL SECOND_POOL: updates three entries of the first pool and one of the second, both or none.
/// pool_update_driver POOL: only opens it. The tests of kills and failing system calls run it; its log shows warnings
/// and errors only, on standard output.

#include <cstdio>
#include <string>

#include "lib/baselib/pool/pool_transaction.h"

int main(int argc, char** argv) {
    Log().SetScreenThreshold(static_cast<int>(LOGGING_LEVEL::WARNING));
    Log().SetFileThreshold(static_cast<int>(LOGGING_LEVEL::NO_MESSAGE));
    try {
        PARAMETER_POOL_READ_WRITE_CHANGE pool(argv[1]);
        if (argc < 3) return 0;
        PARAMETER_POOL_READ_WRITE_CHANGE second(argv[2]);
        POOL_TRANSACTION transaction({&pool, &second});
        ARRAY<double> vector(0, 20'000);  // several write calls
        for (int i = 0; i < vector.Count(); ++i) vector[i] = i / 7.0;
        pool.Change("second", 22);
        pool.Change("vector", vector);
        pool.Change("new", std::string("appended"));
        second.Change("count", second.FindKey("count") ? second.Get<int>("count") + 1 : 1);
        transaction.Commit();
        return 0;
    } catch (const ERROR_EXCEPTION& error) {
        std::printf("%s\n", error.Message().c_str());
        return 1;
    }
}
