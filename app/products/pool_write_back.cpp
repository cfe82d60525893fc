#include "app/products/pool_write_back.h"

#include <fstream>
#include <iterator>

#include "lib/baselib/logging/logging.h"

namespace {

std::string Content(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// Keeps the file's identity, as an update of a pool does.
void Restore(const std::string& path, const std::string& content) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(content.data(), static_cast<std::streamsize>(content.size()));
    if (!file.flush())
        Log().Message(LOGGING_LEVEL::ALARM, "can not restore pool %s, it holds the history of a failed run",
                      path.c_str());
}

}  // namespace

void WriteBackPools(LOG_POOL& log_pool, PARAMETER_POOL_READ_WRITE_CHANGE& insar_pool) {
    if (log_pool.own == nullptr) return insar_pool.Update();
    const std::string path = log_pool.own->FileName();
    const std::string before = Content(path);
    log_pool.own->Update();
    try {
        insar_pool.Update();
    } catch (...) {
        Restore(path, before);
        throw;
    }
}
