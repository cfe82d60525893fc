#include "app/products/flag_product.h"

#include <vector>

#include "lib/baselib/sidecar/product_kind.h"
#include "simulation/layover_shadow.h"
#include "simulation/thread_arg.h"
#include "simulation/threads.h"

FLAG_PRODUCT::FLAG_PRODUCT(const PRODUCT_SET& files, const IMAGE_SIZE& image)
    : image_(image), file_(files.Find(KindOf(PRODUCT::LAYOVER_SHADOW).key)) {}

void FLAG_PRODUCT::Write(const SCENE& scene, const TERRAIN_BOUNDS& bounds, double relief_m) const {
    if (file_ == nullptr) return;
    const LAYOVER_SHADOW flags(scene, image_.samples, image_.lines, bounds, relief_m);
    const auto write = [&](THREAD_ARG* argument) {
        const CONVERGENCE_REPORT report;
        try {
            std::vector<unsigned char> pixels(static_cast<std::size_t>(image_.samples) * LAYOVER_SHADOW::kLines);
            for (std::uint32_t i = 0; i < argument->length; ++i) {
                const auto piece = static_cast<int>(argument->start + i);
                flags.Find(piece, pixels.data());
                file_->WriteRows(static_cast<long long>(piece) * LAYOVER_SHADOW::kLines, flags.LinesOf(piece),
                                 pixels.data());
            }
        } catch (...) {
            file_->Abandon();  // others may wait for these rows
            throw;
        }
    };
    THREADS<THREAD_ARG, unsigned>(0, static_cast<unsigned>(flags.Pieces()), write, THREADS_LOG::SILENT).Run();
}

double FlagsMemory_bytes(const REQUEST& request, const DEM_RANGE& simulated, const IMAGE_SIZE& image) {
    return request.WantsLayoverShadow() ? LAYOVER_SHADOW::WorkingBytes(simulated, image.lines) : 0.0;
}
