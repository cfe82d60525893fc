#include "app/products/disk_room.h"

#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <map>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/errors/log_and_throw.h"
#include "lib/baselib/image/output_path.h"
#include "lib/baselib/image/raster_header.h"

namespace {

[[noreturn]] void Refuse(const PRODUCT_TO_COME& product, long long there, int error) {
    LogAndThrow<ERROR_NO_DISK_SPACE>(
        "configuration: key \"%s\": %s: no room for an image of %d x %d pixels: %lld bytes are needed, %lld are there: "
        "%s",
        product.file.source.key.c_str(), product.file.Text(), product.size.samples, product.size.lines, product.Bytes(),
        there, std::strerror(error));
}

/// The room of the file system that will take the file; nothing when the file needs none, or has no folder.
bool FindRoom(const std::string& target, dev_t& device, long long& there) {
    struct stat older {};
    if (stat(target.c_str(), &older) == 0 && !S_ISREG(older.st_mode)) return false;
    const FOLDER_AND_NAME place(target);
    struct stat folder {};
    struct statvfs disk {};
    if (stat(place.FolderPath(), &folder) != 0 || statvfs(place.FolderPath(), &disk) != 0) return false;
    device = folder.st_dev;
    there = static_cast<long long>(disk.f_frsize * (geteuid() == 0 ? disk.f_bfree : disk.f_bavail));
    return true;
}

}  // namespace

long long PRODUCT_TO_COME::Bytes() const {
    return kRasterHeaderBytes + static_cast<long long>(size.samples) * size.lines * pixel_bytes;
}

std::vector<PRODUCT_TO_COME> ProductsToCome(const REQUEST& request, const IMAGE_SIZE& image,
                                            const OUTPUT_SIZES& sizes) {
    std::vector<PRODUCT_TO_COME> products;
    for (const SOURCED_TEXT& file : request.ProductFiles()) {
        if (file.text == request.layover_shadow_file.text) {
            products.push_back({file, image, 1});
            continue;
        }
        const bool is_phase = file.text == request.phase.file.text;
        const bool is_shift =
            file.text == request.shifts.range_file.text || file.text == request.shifts.azimuth_file.text;
        products.push_back({file, is_phase ? image : is_shift ? sizes.shift : sizes.earth});
    }
    return products;
}

void RequireRoomFor(const std::vector<PRODUCT_TO_COME>& products) {
    rlimit limit{};
    const bool is_limited = getrlimit(RLIMIT_FSIZE, &limit) == 0;
    std::map<dev_t, long long> asked;
    for (const PRODUCT_TO_COME& product : products) {
        dev_t device = 0;
        long long there = 0;
        if (!FindRoom(BehindLinks(product.file.text), device, there)) continue;
        there -= asked[device];
        if (product.Bytes() > there) Refuse(product, std::max(there, 0LL), ENOSPC);
        if (is_limited && static_cast<rlim_t>(product.Bytes()) > limit.rlim_cur) Refuse(product, there, EFBIG);
        asked[device] += product.Bytes();
    }
}
