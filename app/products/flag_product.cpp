#include "app/products/flag_product.h"

#include <algorithm>
#include <vector>

#include "lib/baselib/sidecar/product_kind.h"
#include "simulation/thread_arg.h"
#include "simulation/threads.h"

namespace {

/// The first one that begins at a line or behind it.
int FirstPiece(int line) {
    return line / LAYOVER_SHADOW::kLines + (line % LAYOVER_SHADOW::kLines != 0 ? 1 : 0);
}

}  // namespace

FLAG_PRODUCT::FLAG_PRODUCT(const PRODUCT_SET& files, const IMAGE_SIZE& image)
    : image_(image), file_(files.Find(KindOf(PRODUCT::LAYOVER_SHADOW).key)) {}

void FLAG_PRODUCT::Prepare(const SCENE& scene, const TERRAIN_BOUNDS& bounds, double relief_m) {
    if (file_ != nullptr) flags_.emplace(scene, image_.samples, image_.lines, bounds, relief_m);
}

void FLAG_PRODUCT::WritePieces(int first, int end) const {
    constexpr int kLines = LAYOVER_SHADOW::kLines;
    const CONVERGENCE_REPORT report;
    std::vector<unsigned char> pixels(static_cast<std::size_t>(image_.samples) * kLines);
    for (int piece = first; piece < end; ++piece) {
        flags_->Find(piece, pixels.data());
        file_->WriteRows(static_cast<long long>(piece) * kLines, flags_->LinesOf(piece), pixels.data());
    }
}

void FLAG_PRODUCT::WriteShare(int first_line, int end_line) const {
    if (flags_) WritePieces(FirstPiece(first_line), std::min(FirstPiece(end_line), flags_->Pieces()));
}

void FLAG_PRODUCT::WriteRest(int first_line) const {
    if (!flags_) return;
    const auto write = [&](THREAD_ARG* argument) {
        try {
            const int first = static_cast<int>(argument->start);
            WritePieces(first, first + static_cast<int>(argument->length));
        } catch (...) {
            file_->Abandon();  // others may wait for these rows
            throw;
        }
    };
    const int first_piece = std::min(FirstPiece(first_line), flags_->Pieces());
    THREADS<THREAD_ARG, unsigned>(static_cast<unsigned>(first_piece), static_cast<unsigned>(flags_->Pieces()), write,
                                  THREADS_LOG::SILENT)
        .Run();
}

double FlagsMemory_bytes(const REQUEST& request, const DEM_RANGE& simulated, const IMAGE_SIZE& image) {
    return request.WantsLayoverShadow() ? LAYOVER_SHADOW::WorkingBytes(simulated, image.lines) : 0.0;
}
