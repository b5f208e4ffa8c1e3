// SPDX-License-Identifier: Apache-2.0
#include "Text/Drawing/Pictures.h"

#include <cairo-pdf.h>
#include <cairo.h>

#include <cstdlib>
#include <cstring>
#include <memory>

namespace pelvor {
namespace {

constexpr unsigned kLongestEdge = 32767;
constexpr std::uint64_t kMostPixels = 100'000'000;  // 400 MB

using Bytes = std::span<const std::byte>;

unsigned byteAt(Bytes bytes, std::size_t place) { return std::to_integer<unsigned>(bytes[place]); }

unsigned pairAt(Bytes bytes, std::size_t place) {
    return byteAt(bytes, place) << 8 | byteAt(bytes, place + 1);
}

PictureHeader readPNG(Bytes png) {
    constexpr std::size_t kWidth = 16, kHeight = 20;
    if (png.size() < kHeight + 4) return {PictureKind::png};
    auto wordAt = [&](std::size_t place) { return pairAt(png, place) << 16 | pairAt(png, place + 2); };
    return {PictureKind::png, wordAt(kWidth), wordAt(kHeight)};
}

// The size stands in the segment that starts a frame.
PictureHeader readJPEG(Bytes jpeg) {
    std::size_t place = 2;
    while (place + 9 <= jpeg.size() && byteAt(jpeg, place) == 0xFF) {
        const unsigned marker = byteAt(jpeg, place + 1);
        if (marker == 0xFF) {  // a byte that only fills
            ++place;
            continue;
        }
        const bool startsFrame =
            marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
        if (startsFrame) return {PictureKind::jpeg, pairAt(jpeg, place + 7), pairAt(jpeg, place + 5)};
        place += 2 + pairAt(jpeg, place + 2);
    }
    return {PictureKind::jpeg};
}

bool startsWith(Bytes bytes, std::string_view start) {
    return bytes.size() >= start.size() && !std::memcmp(bytes.data(), start.data(), start.size());
}

struct DestroySurface {
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};
using Surface = std::unique_ptr<cairo_surface_t, DestroySurface>;

Surface decodePNG(Bytes png) {
    auto read = [](void* rest, unsigned char* data, unsigned length) {
        auto& bytes = *static_cast<Bytes*>(rest);
        if (bytes.size() < length) return CAIRO_STATUS_READ_ERROR;
        std::memcpy(data, bytes.data(), length);
        bytes = bytes.subspan(length);
        return CAIRO_STATUS_SUCCESS;
    };
    return Surface(cairo_image_surface_create_from_png_stream(read, &png));
}

// A surface whose pixels nobody looks at: the document takes the JPEG data itself.
Surface wrapJPEG(Bytes jpeg, const PictureHeader& header) {
    Surface surface(cairo_image_surface_create(CAIRO_FORMAT_RGB24, static_cast<int>(header.width),
                                               static_cast<int>(header.height)));
    auto* copy = static_cast<unsigned char*>(std::malloc(jpeg.size()));
    if (!copy) return nullptr;
    std::memcpy(copy, jpeg.data(), jpeg.size());
    if (cairo_surface_set_mime_data(surface.get(), CAIRO_MIME_TYPE_JPEG, copy, jpeg.size(), &std::free, copy))
        std::free(copy);
    return surface;
}

// "" for a picture that can be read.
std::string reasonAgainst(const PictureHeader& header, bool isPDF) {
    if (header.kind == PictureKind::unknown) return "the picture is neither PNG nor JPEG";
    if (header.kind == PictureKind::jpeg && !isPDF) return "JPEG pictures are drawn only in PDF documents";
    if (!header.width || !header.height) return "the picture's header is broken";
    if (header.width > kLongestEdge || header.height > kLongestEdge ||
        std::uint64_t{header.width} * header.height > kMostPixels)
        return "the picture is too large";
    return "";
}

}  // namespace

PictureHeader readPictureHeader(Bytes picture) {
    if (startsWith(picture, "\x89PNG\r\n\x1A\n")) return readPNG(picture);
    if (startsWith(picture, "\xFF\xD8\xFF")) return readJPEG(picture);
    return {};
}

std::shared_ptr<cairo_surface_t> readPicture(Bytes picture, bool isPDF, std::string& failure) {
    const PictureHeader header = readPictureHeader(picture);
    failure = reasonAgainst(header, isPDF);
    if (!failure.empty()) return nullptr;
    Surface surface = header.kind == PictureKind::png ? decodePNG(picture) : wrapJPEG(picture, header);
    if (!surface) {
        failure = "there is not enough memory";
    } else if (cairo_status_t status = cairo_surface_status(surface.get())) {
        failure = std::string("the picture is broken: ") + cairo_status_to_string(status);
        surface.reset();
    }
    return surface;
}

void paintPicture(cairo_t* page, cairo_surface_t* pixels, NSRect part, float alpha, bool isPDF) {
    cairo_save(page);
    cairo_scale(page, 1.0 / double{part.size.width}, 1.0 / double{part.size.height});
    cairo_set_source_surface(page, pixels, -double{part.origin.x}, -double{part.origin.y});
    // Between its pixels and nothing an image would fade at its edges; a document keeps the picture as it is.
    if (!isPDF) cairo_pattern_set_extend(cairo_get_source(page), CAIRO_EXTEND_PAD);
    cairo_rectangle(page, 0, 0, double{part.size.width}, double{part.size.height});
    if (alpha < 1) {
        cairo_clip(page);
        cairo_paint_with_alpha(page, double{alpha});
    } else {
        cairo_fill(page);
    }
    cairo_restore(page);
}

std::string drawPicture(cairo_t* page, Bytes picture, bool isPDF) {
    std::string failure;
    if (const auto pixels = readPicture(picture, isPDF, failure)) {
        const PictureHeader header = readPictureHeader(picture);
        paintPicture(page, pixels.get(),
                     {{0, 0}, {static_cast<float>(header.width), static_cast<float>(header.height)}}, 1,
                     isPDF);
    }
    return failure;
}

}  // namespace pelvor
