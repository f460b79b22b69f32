// SPDX-License-Identifier: Apache-2.0
//
// Picture values: loading, measuring and saving.
#include "platform/model/pictures.h"

#include "os/files.h"
#include "platform/model/view.h"
#include "platform/operations/drawing.h"
#include "platform/resources/resource.h"
#include "platform/text.h"

#include <cmath>
#include <cstdlib>
#include <deque>
#include <unordered_map>

namespace tarn::platform {

namespace {

constexpr std::string_view namePrefix = "<picture ";

struct Known {
    Picture picture;
    PictureSource source;
};

struct Store {
    std::deque<Known> all;  // by handle, from 1
    std::unordered_map<std::string, int> handles;
};

Store& store() {
    static Store& one = *new Store;  // widgets may ask until the very end
    return one;
}

const Known* known(int handle) {
    const std::deque<Known>& all = store().all;
    return handle < 1 || handle > static_cast<int>(all.size()) ? nullptr
                                                               : &all[static_cast<std::size_t>(handle - 1)];
}

Picture keep(std::string key, PictureSource source, int width, int height) {
    const auto [place, fresh] =
        store().handles.emplace(std::move(key), static_cast<int>(store().all.size()) + 1);
    if (fresh) store().all.push_back({{width, height, place->second}, std::move(source)});
    return known(place->second)->picture;
}

int handleOfName(std::string_view name) {
    return name.starts_with(namePrefix) ? leadingNumber(name.substr(namePrefix.size())) : 0;
}

unsigned byteAt(std::string_view bytes, std::size_t at) {
    return at < bytes.size() ? static_cast<unsigned char>(bytes[at]) : 0;
}
int little(std::string_view bytes, std::size_t at, int count) {
    unsigned value = 0;
    for (int i = count; i-- > 0;) value = value << 8 | byteAt(bytes, at + static_cast<std::size_t>(i));
    return static_cast<int>(value);
}
int big(std::string_view bytes, std::size_t at) {
    unsigned value = 0;
    for (std::size_t i = 0; i < 4; ++i) value = value << 8 | byteAt(bytes, at + i);
    return static_cast<int>(value);
}

Picture measuredBmp(std::string_view bytes) {
    constexpr int coreHeader = 12;
    if (little(bytes, 14, 4) == coreHeader) return {little(bytes, 18, 2), little(bytes, 20, 2)};
    const int height = little(bytes, 22, 4);  // negative: from the top down
    return {little(bytes, 18, 4), height == INT32_MIN ? 0 : std::abs(height)};
}

// The largest of the pictures that an icon holds; a side of 0 is 256.
Picture measuredIco(std::string_view bytes) {
    Picture largest;
    const int count = little(bytes, 4, 2);
    for (int i = 0; i < count; ++i) {
        const std::size_t at = 6 + static_cast<std::size_t>(i) * 16;
        if (at + 16 > bytes.size()) break;
        const auto side = [&](std::size_t place) {
            const int pixels = static_cast<int>(byteAt(bytes, place));
            return pixels == 0 ? 256 : pixels;
        };
        if (side(at) > largest.width) largest = {side(at), side(at + 1)};
    }
    return largest;
}

// The number behind `name="` in the head of an SVG; 0 if there is none, or if it is a share of something.
double svgNumber(std::string_view head, std::string_view name) {
    const std::string quoted = " " + std::string(name) + "=\"";
    const std::size_t at = head.find(quoted);
    if (at == std::string_view::npos) return 0;
    const std::string value(head.substr(at + quoted.size(), 60));
    char* end = nullptr;
    const double number = std::strtod(value.c_str(), &end);
    return *end == '%' ? 0 : number;
}

Picture measuredSvg(std::string_view bytes) {
    const std::size_t start = bytes.find("<svg");
    if (start == std::string_view::npos || start > 4096) return {};
    std::string head(bytes.substr(start, bytes.find('>', start) - start));
    for (char& c : head)
        if (c == '\n' || c == '\r' || c == '\t') c = ' ';
    double width = svgNumber(head, "width"), height = svgNumber(head, "height");
    if (const std::size_t box = head.find(" viewBox=\"");
        box != std::string::npos && (width <= 0 || height <= 0)) {
        const char* at = head.c_str() + box + 10;
        double numbers[4] = {};
        for (double& number : numbers) {
            char* end = nullptr;
            number = std::strtod(at, &end);
            at = *end == ',' ? end + 1 : end;
        }
        width = numbers[2];
        height = numbers[3];
    }
    constexpr double most = 100000;
    if (!(width > 0 && height > 0 && width < most && height < most)) return {};
    return {static_cast<int>(std::lround(width)), static_cast<int>(std::lround(height))};
}

std::string extensionOf(const std::string& file) {
    const std::size_t dot = file.rfind('.'), slash = file.find_last_of("/\\");
    if (dot == std::string::npos || (slash != std::string::npos && dot < slash)) return "";
    return upper(std::string_view(file).substr(dot + 1));
}

bool hasFormat(std::string_view bytes, std::string_view extension) {
    if (extension == "BMP") return bytes.starts_with("BM");
    if (extension == "PNG") return bytes.starts_with("\x89PNG");
    if (extension == "ICO") return bytes.starts_with(std::string_view("\0\0\1\0", 4));
    return extension == "SVG" && measuredSvg(bytes).width > 0;
}

}  // namespace

Picture measuredPicture(std::string_view bytes) {
    Picture size;
    if (bytes.starts_with("BM"))
        size = measuredBmp(bytes);
    else if (bytes.starts_with("\x89PNG"))
        size = {big(bytes, 16), big(bytes, 20)};
    else if (bytes.starts_with(std::string_view("\0\0\1\0", 4)))
        size = measuredIco(bytes);
    else
        size = measuredSvg(bytes);
    return size.width > 0 && size.height > 0 ? size : Picture();
}

const PictureSource* pictureSource(std::string_view name) {
    const Known* const found = known(handleOfName(name));
    return found == nullptr ? nullptr : &found->source;
}

std::string PictureName(const Picture& picture) {
    if (picture.handle == 0) return "";
    return std::string(namePrefix) + std::to_string(picture.handle) + ">";
}

Answer<Picture> LoadPicture(std::string_view name) {
    if (const int handle = handleOfName(name)) return GetBitmapInfo(handle);
    Answer<std::string> bytes = PictureBytes(std::string(name));
    if (bytes.code != Ok) return {{}, bytes.code};
    Picture size = measuredPicture(bytes.value);
    if (size.width == 0) size = view().measured(bytes.value);
    if (size.width <= 0 || size.height <= 0) return {{}, BitmapInvalid};
    PictureSource source;
    source.bytes = bytes.value;
    return {keep("file " + bytes.value, std::move(source), size.width, size.height), Ok};
}

Answer<Picture> GetBitmapInfo(int handle) {
    const Known* const found = known(handle);
    return found == nullptr ? Answer<Picture>{{}, BitmapInvalid} : Answer<Picture>{found->picture, Ok};
}

Answer<int> PictureWidth(const Picture& picture) {
    const Answer<Picture> found = GetBitmapInfo(picture.handle);
    return {found.value.width, found.code};
}

Answer<int> PictureHeight(const Picture& picture) {
    const Answer<Picture> found = GetBitmapInfo(picture.handle);
    return {found.value.height, found.code};
}

Picture TBITMAP(int width, int height, std::string_view text, std::string_view iconFile) {
    PictureSource source;
    source.face = true;
    source.width = std::clamp(width, 1, 4096);
    source.height = std::clamp(height, 1, 4096);
    source.text = text;
    source.icon = PictureBytes(std::string(iconFile)).value;
    std::string key = "face " + std::to_string(source.width) + " " + std::to_string(source.height) + " ";
    key.append(text).append(1, '\0').append(source.icon);
    const int w = source.width, h = source.height;
    return keep(std::move(key), std::move(source), w, h);
}

Code SavePicture(const Picture& picture, const std::string& file) {
    const Known* const found = known(picture.handle);
    if (found == nullptr) return BitmapInvalid;
    const std::string extension = extensionOf(file);
    const bool same = !found->source.face && hasFormat(found->source.bytes, extension);
    const std::string bytes = same ? found->source.bytes : view().encoded(PictureName(picture), extension);
    if (bytes.empty()) return BitmapInvalid;
    return os::saveFile(os::native(file), bytes, os::Durability::Unsynced).ok() ? Ok : FileNotWritten;
}

}  // namespace tarn::platform
