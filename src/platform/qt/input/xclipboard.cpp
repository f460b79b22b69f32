// SPDX-License-Identifier: Apache-2.0
#include "platform/qt/input/xclipboard.h"

#include "platform/qt/texts.h"

#include <poll.h>
#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>
#include <string_view>

namespace tarn::platform::qt {

namespace {

constexpr int Patience = 1000;  // milliseconds without a word from the other program
constexpr std::uint32_t All = 0x1FFFFFFF;

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};
template <class Reply>
using Owned = std::unique_ptr<Reply, Free>;

// A connection of its own, since the toolkit reads all events of the other; with a window to which the owner of the
// clipboard sends. Closing it ends a transfer that is under way.
class Transfer {
public:
    Transfer() : connection_(xcb_connect(nullptr, nullptr)) {
        if (xcb_connection_has_error(connection_) != 0) return;
        const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
        if (screen == nullptr) return;
        window_ = xcb_generate_id(connection_);
        const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
        xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window_, screen->root, 0, 0, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual, XCB_CW_EVENT_MASK, &events);
        property_ = atom("TARNWICK_CLIPBOARD");
        incremental_ = atom("INCR");
    }
    ~Transfer() { xcb_disconnect(connection_); }
    Transfer(const Transfer&) = delete;
    Transfer& operator=(const Transfer&) = delete;

    std::optional<std::string> fetch(std::string_view target, std::size_t most) {
        if (window_ == 0) return std::nullopt;
        xcb_convert_selection(connection_, window_, atom("CLIPBOARD"), atom(target), property_,
                              XCB_CURRENT_TIME);
        if (!converted()) return std::nullopt;
        std::string text;
        if (takeProperty(text) != incremental_) return cut(std::move(text), most);
        text.clear();
        while (text.size() < most && nextPiece()) {
            const std::size_t before = text.size();
            takeProperty(text);
            if (text.size() == before) break;  // an empty piece is the end
        }
        return cut(std::move(text), most);
    }

    // Whether the owner has not answered, be it with a refusal.
    [[nodiscard]] bool silent() const { return silent_; }

private:
    static std::string cut(std::string text, std::size_t most) {
        if (text.size() > most) text.resize(most);
        return text;
    }

    xcb_atom_t atom(std::string_view name) {
        const auto asked =
            xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.data());
        const Owned<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection_, asked, nullptr));
        return reply != nullptr ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
    }

    // The next event; null when none has come for as long as one waits.
    Owned<xcb_generic_event_t> event() {
        xcb_flush(connection_);
        for (;;) {
            if (auto* const come = xcb_poll_for_event(connection_); come != nullptr)
                return Owned<xcb_generic_event_t>(come);
            pollfd ready{xcb_get_file_descriptor(connection_), POLLIN, 0};
            if (xcb_connection_has_error(connection_) != 0 || poll(&ready, 1, Patience) <= 0) return nullptr;
        }
    }

    // Whether the owner has put the text, or the word that it comes in pieces, into the property.
    bool converted() {
        while (const auto come = event()) {
            if ((come->response_type & 0x7F) != XCB_SELECTION_NOTIFY) continue;
            return reinterpret_cast<const xcb_selection_notify_event_t*>(come.get())->property !=
                   XCB_ATOM_NONE;
        }
        silent_ = true;
        return false;
    }

    bool nextPiece() {
        while (const auto come = event()) {
            if ((come->response_type & 0x7F) != XCB_PROPERTY_NOTIFY) continue;
            const auto* change = reinterpret_cast<const xcb_property_notify_event_t*>(come.get());
            if (change->atom == property_ && change->state == XCB_PROPERTY_NEW_VALUE) return true;
        }
        return false;
    }

    // Appends the property's bytes and removes it, which asks for the next piece. The result is its type.
    xcb_atom_t takeProperty(std::string& text) {
        const auto asked =
            xcb_get_property(connection_, 1, window_, property_, XCB_GET_PROPERTY_TYPE_ANY, 0, All);
        const Owned<xcb_get_property_reply_t> reply(xcb_get_property_reply(connection_, asked, nullptr));
        if (reply == nullptr) return XCB_ATOM_NONE;
        text.append(static_cast<const char*>(xcb_get_property_value(reply.get())),
                    static_cast<std::size_t>(xcb_get_property_value_length(reply.get())));
        return reply->type;
    }

    xcb_connection_t* connection_;
    xcb_window_t window_ = 0;
    xcb_atom_t property_ = XCB_ATOM_NONE, incremental_ = XCB_ATOM_NONE;
    bool silent_ = false;
};

}  // namespace

std::optional<std::string> foreignClipboard(std::size_t most) {
    Transfer transfer;
    std::optional<std::string> text;
    for (const std::string_view target : {std::string_view(BytesType), std::string_view("UTF8_STRING")}) {
        text = transfer.fetch(target, most);
        if (transfer.silent()) return std::string();
        if (text && !text->empty()) break;  // some give nothing for a form that they do not have
    }
    return text;
}

}  // namespace tarn::platform::qt
