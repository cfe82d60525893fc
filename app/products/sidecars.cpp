#include "app/products/sidecars.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <set>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/image/mem_mgr.h"
#include "lib/baselib/image/output_path.h"
#include "lib/baselib/image/whole_file.h"
#include "lib/baselib/logging/logging.h"
#include "lib/baselib/sidecar/product_kind.h"
#include "lib/baselib/sidecar/vrt_sidecar.h"

namespace {

namespace fs = std::filesystem;

/// The beginning of a regular file, of which more than a sidecar has is no sidecar. A pipe would wait for a writer.
std::string Content(const std::string& path) {
    constexpr std::size_t kMoreThanSidecar = 8192;
    if (!fs::is_regular_file(path)) return "";
    std::string content(kMoreThanSidecar, '\0');
    std::ifstream file(path, std::ios::binary);
    file.read(content.data(), static_cast<std::streamsize>(content.size()));
    content.resize(static_cast<std::size_t>(file.gcount()));
    return content;
}

bool IsOurs(const std::string& content) {
    return content.starts_with("<VRTDataset") && content.find("\"VELMORA_PRODUCT\"") != std::string::npos;
}

std::string TextFor(const SOURCED_TEXT& product, const PRODUCT_KIND& kind, bool relative_shifts) {
    MEM_MGR image;
    image.MapFile(product.text, ACCESS_MODE::READ_ONLY, kind.pixel_type);
    const bool is_shift = kind.product == PRODUCT::RG_COREG || kind.product == PRODUCT::AZ_COREG;
    std::string description = kind.description;
    if (is_shift && relative_shifts) description.replace(0, std::strlen("position in slave"), "shift towards slave");
    return VrtText({fs::path(product.text).filename().string(), image.Columns(), image.Rows(), image.HeaderSize(),
                    kind.pixel_type, description, kind.unit, kind.key, std::nullopt});
}

void Warn(const std::string& path, const char* reason) {
    Log().Message(LOGGING_LEVEL::WARNING, "sidecar %s can not be written: %s", path.c_str(), reason);
}

void Replace(const std::string& path, const std::string& text) {
    const int error = ReplaceFile(path, text);
    if (error != 0) Warn(path, std::strerror(error));
}

void BringUpToDate(const SOURCED_TEXT& product, bool wanted, bool relative_shifts) {
    const PRODUCT_KIND* const kind = FindProductKind(product.source.key);
    if (kind == nullptr || !fs::is_regular_file(product.text) || !CanBeNamedInVrt(product.text)) return;
    const std::string path = VrtPath(product.text);
    const std::string present = Content(path);
    if (!wanted && !IsOurs(present)) return;
    const std::string text = TextFor(product, *kind, relative_shifts);
    if (present == text) return;
    if (!wanted)
        unlink(path.c_str());
    else if (fs::exists(path) && !IsOurs(present))
        Warn(path, "there is a file that is no sidecar of a product");
    else
        Replace(path, text);
}

}  // namespace

void BringSidecarsUpToDate(const REQUEST& request) {
    std::set<std::string> folders;
    for (const SOURCED_TEXT& product : request.ProductFiles()) {
        folders.insert(FOLDER_AND_NAME(product.text).FolderPath());
        try {
            BringUpToDate(product, request.sidecars, request.shifts.relative);
        } catch (const ERROR_EXCEPTION& error) {
            Warn(VrtPath(product.text), error.Message().c_str());
        } catch (const fs::filesystem_error& error) {
            Warn(VrtPath(product.text), error.what());
        }
    }
    // Where this fails a power failure may leave earlier sidecars; that it can not be done was told of the products.
    if (request.sidecars)
        for (const std::string& folder : folders) SynchroniseFolder(folder);
}
