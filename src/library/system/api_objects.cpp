// SPDX-License-Identifier: Apache-2.0
//
// Windows, controls and window functions of compiled programs.
#include "library/system/api_objects.h"

#include "kernel/api/api_access.h"
#include "kernel/values/records.h"
#include "kernel/windows/resources.h"
#include "kernel/windows/windowing.h"
#include "os/text/ascii.h"

#include <map>
#include <string>
#include <vector>

namespace tarn::api {
namespace {

enum Field : std::int32_t { ItemField = 1, WindowField, PlaceField };

// Names of windows by their numbers in this process, from 1.
std::vector<std::string>& windowNames() {
    static std::vector<std::string> names;
    return names;
}

std::int32_t numberOf(const std::string& window) {
    if (window.empty()) return 0;
    static std::map<std::string, std::int32_t> numbers;
    const auto [place, isNew] = numbers.emplace(ascii::lowered(window), 0);
    if (isNew) {
        windowNames().push_back(window);
        place->second = static_cast<std::int32_t>(windowNames().size());
    }
    return place->second;
}

std::int32_t wordAt(const tarn_record* record, std::int32_t field) {
    std::int32_t value = 0;
    RecordGet(in(record), field, &value, KindInteger);
    return value;
}

// A window that its name alone gives: a predefined object of the library has its own.
platform::Object windowNamed(const std::string& name, int control) {
    return platform::Object(name, control);
}

// ---- numbers of controls, from the resources of the program ----

using Numbers = std::map<std::string, int>;

const Numbers& controlsOf(const std::string& window) {
    static std::map<std::string, Numbers> known;
    const auto [place, isNew] = known.emplace(ascii::lowered(window), Numbers());
    if (!isNew) return place->second;
    const std::string text = ResourceInfo(ApplicationResources(), "CONTROLS", window).text;
    std::string_view rest = text;
    while (!rest.empty()) {
        const std::string_view line = ascii::takeLine(rest);
        const std::size_t blank = line.rfind(' ');
        if (blank == std::string_view::npos) continue;
        place->second.emplace(ascii::lowered(line.substr(0, blank)),
                              std::atoi(std::string(line.substr(blank + 1)).c_str()));
    }
    return place->second;
}

// ---- window functions ----

using CFunction = int32_t (*)(const tarn_record*, int32_t, const tarn_record*, int32_t);

std::map<std::string, CFunction>& functions() {
    static std::map<std::string, CFunction> all;
    return all;
}

// A record on the stack: three integers need no block that outlives the call.
class ObjectRecord {
public:
    explicit ObjectRecord(const platform::Object& object) {
        static constexpr uint8_t Kinds[24] = {KindInteger << 4 | KindInteger, KindInteger << 4};
        tarn_record_init(&record_, TARN_TAG_RECORD, Kinds);
        putObject(object, &record_);
    }
    ~ObjectRecord() { tarn_record_free(&record_); }
    ObjectRecord(const ObjectRecord&) = delete;
    ObjectRecord& operator=(const ObjectRecord&) = delete;
    const tarn_record* get() const { return &record_; }

private:
    tarn_record record_{};
};

bool dispatch(const platform::Object& window, int event, const platform::Object& control, int parameter) {
    const auto found = functions().find(ascii::lowered(window.window()));
    if (found == functions().end()) return false;
    const ObjectRecord me(window), sender(control);
    return found->second(me.get(), event, sender.get(), parameter) != 0;
}

}  // namespace

platform::Object objectOf(const tarn_record* record) {
    const std::int32_t window = wordAt(record, WindowField);
    if (window < 1 || static_cast<std::size_t>(window) > windowNames().size()) return {};
    return windowNamed(windowNames()[static_cast<std::size_t>(window) - 1], wordAt(record, ItemField));
}

void putObject(const platform::Object& object, tarn_record* record) {
    const std::int32_t item = object.number(), window = numberOf(object.window());
    RecordPut(in(record), ItemField, &item, KindInteger);
    RecordPut(in(record), WindowField, &window, KindInteger);
}

}  // namespace tarn::api

using namespace tarn::api;

extern "C" {

void tarn_object_bind(tarn_record* object, const char* window, const char* control) {
    const std::string name(text(window)), item(text(control));
    int number = 0;
    if (!item.empty()) {
        const auto& controls = controlsOf(name);
        const auto found = controls.find(tarn::ascii::lowered(item));
        number = found == controls.end() ? 0 : found->second;
        if (number == 0) return;  // it names nothing: each use is an error of its own
    }
    putObject(tarn::platform::Object(name, number), object);
}

void tarn_control_element(const tarn_record* array, int32_t index, tarn_record* element) {
    const tarn::platform::Object first = objectOf(array), found = tarn::ControlElement(first, index);
    if (found.empty())
        tarn::SetError(tarn::IsLoaded(first.owner()) ? tarn::ERR_ARRAY_BOUNDS : tarn::ERR_WINDOW_NOT_LOADED);
    putObject(found, element);
}

void tarn_window_register(const char* window,
                          int32_t (*function)(const tarn_record*, int32_t, const tarn_record*, int32_t)) {
    functions()[tarn::ascii::lowered(text(window))] = function;
    tarn::RegisterWindow(tarn::platform::Object(text(window)), dispatch);
}

void tarn_window_main(const char* window) {
    const tarn::platform::Object main{text(window)};
    tarn::Load(main);
    if (!tarn::IsLoaded(main)) return;
    tarn::Show(main, false);
    tarn::MainLoop(main);
}

}  // extern "C"
