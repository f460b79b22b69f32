// SPDX-License-Identifier: Apache-2.0
//
// Drawing on windows, images and printers.
#include "platform/operations/drawing.h"

#include "os/text/utf8.h"
#include "platform/model/access_internal.h"
#include "platform/model/graph_internal.h"
#include "platform/model/pictures.h"

#include <algorithm>

namespace tarn::platform {

namespace {

constexpr std::size_t TabColumns = 4;

bool takesDrawing(Type type) {
    return type == Type::Dialog || type == Type::Image;
}

Code notStarted(const Control& control) {
    return control.type == Type::Printer ? PrintNotStarted : GraphicsNotStarted;
}

// The control that is drawn on, with its drawing.
struct Target {
    Control* control = nullptr;
    Code code = Ok;
    explicit Target(const Object& object) : control(findControl(object)) {
        if (control == nullptr)
            code = missing(object);
        else if (control->graph == nullptr)
            code = notStarted(*control);
    }
    [[nodiscard]] Graph& graph() const { return *control->graph; }
    [[nodiscard]] Ink ink() const { return {control->foreColour, control->backColour}; }
};

// `draw` gets the canvas, the drawing and its colours; it is not called where nothing shows.
template <class Draw>
Code drawOn(const Object& object, Draw draw) {
    const Target target(object);
    if (target.code != Ok) return target.code;
    if (target.graph().shows()) draw(*target.graph().canvas, target.graph(), target.ink());
    return Ok;
}

template <class T>
Answer<T> askGraph(const Object& object, T Graph::*part) {
    const Target target(object);
    return target.code != Ok ? Answer<T>{T{}, target.code} : Answer<T>{target.graph().*part, Ok};
}

Code setPoint(const Object& object, int Graph::*part, int value) {
    const Target target(object);
    if (target.code == Ok) target.graph().*part = value;
    return target.code;
}

std::string withoutTabs(std::string_view line) {
    std::string out;
    std::size_t column = 0;
    for (const char c : line) {
        const std::size_t blanks = c == '\t' ? TabColumns - column % TabColumns : 0;
        out.append(blanks, ' ');
        if (blanks == 0) out += c;
        column += blanks != 0 ? blanks : utf8::isFollowing(c) ? 0 : 1;
    }
    return out;
}

// The place, or the start of the character of several bytes that it stands in.
std::size_t characterStart(std::string_view line, std::size_t at) {
    std::size_t start = at;
    while (start > 0 && at - start < 3 && utf8::isInside(line, start)) --start;
    return utf8::isInside(line, start) ? at : start;
}

// How many bytes of the line fit into the width; at least one character. Cost: of a line without end only what is near
// the width is measured.
std::size_t fitting(const Control& control, std::string_view line, int width) {
    constexpr std::size_t Guess = 64;
    const auto fits = [&](std::size_t count) {
        return view().textWidth(control, line.substr(0, count)) <= width;
    };
    std::size_t low = 0,
                high = characterStart(line, std::min(line.size(), Guess));  // what fits, what may not
    while (fits(high)) {
        if (high == line.size()) return high;
        low = high;
        high = characterStart(line, std::min(line.size(), 2 * high));
    }
    const auto next = [&](std::size_t at) {
        std::size_t end = at + 1;
        while (end - at < 4 && utf8::isInside(line, end)) ++end;
        return end;
    };
    while (next(low) < high) {
        const std::size_t middle = std::max(characterStart(line, (low + high) / 2), next(low));
        (fits(middle) ? low : high) = middle;
    }
    return low > 0 ? low : next(low);
}

void putLine(Control& control, std::string_view line) {
    Graph& graph = *control.graph;
    const int height = view().textHeight(control, line);
    if (control.type == Type::Printer && graph.y > 0 &&
        graph.y + height > view().paper(control.name).height) {
        const int x = graph.x;
        beginPage(control);
        graph.x = x;
    }
    if (graph.shows())
        graph.canvas->text(graph.originX + graph.x, graph.originY + graph.y, line, control.font,
                           {control.foreColour, control.backColour});
    graph.y += height;
}

// What of a heading fits: its end, behind dots, since names of files differ there.
std::string shortened(const Control& control, std::string_view text, int width) {
    if (view().textWidth(control, text) <= width) return std::string(text);
    std::string out;
    do {
        text.remove_prefix(1);
        while (utf8::isInside(text, 0)) text.remove_prefix(1);
        out = "..." + std::string(text);
    } while (!text.empty() && view().textWidth(control, out) > width);
    return out;
}

// The heading at the left, the number of the page at the right, a line, and as much room as half a line. As plain text
// it is one line.
void putHeading(Control& control) {
    Graph& graph = *control.graph;
    const int width = view().paper(control.name).width, height = view().textHeight(control, "X");
    const int blank = std::max(view().textWidth(control, " "), 1);
    const std::string number = "Page " + std::to_string(graph.page);
    const int at = width - view().textWidth(control, number);
    std::string line = shortened(control, withoutTabs(graph.job.heading), at - 2 * blank);
    const int gap = at - view().textWidth(control, line);
    line.append(static_cast<std::size_t>(std::max(gap / blank, 1)), ' ');
    if (graph.shows()) {
        const Ink ink{control.foreColour, control.backColour};
        graph.canvas->text(0, 0, line + number, control.font, ink);
        graph.canvas->line(0, height + height / 4, width - 1, height + height / 4, ink);
    }
    graph.y = height + height / 2;
}

void putText(Control& control, std::string_view text) {
    const bool breaks = control.type == Type::Printer;
    const int room = breaks ? view().paper(control.name).width - control.graph->x : 0;
    for (bool more = true; more;) {
        const std::size_t end = text.find('\n');
        more = end != std::string_view::npos && end + 1 < text.size();
        std::string_view line = text.substr(0, end);
        text.remove_prefix(more ? end + 1 : text.size());
        if (line.ends_with('\r')) line.remove_suffix(1);
        const std::string plain = withoutTabs(line);
        line = plain;
        do {
            const std::size_t count = breaks ? fitting(control, line, room) : line.size();
            putLine(control, line.substr(0, count));
            line.remove_prefix(count);
        } while (!line.empty());
    }
}

}  // namespace

Graph& beginGraph(Control& control, std::unique_ptr<Canvas> canvas) {
    control.graph = std::make_shared<Graph>();
    Graph& graph = *control.graph;
    graph.canvas = std::move(canvas);
    graph.font = control.font;
    graph.foreColour = control.foreColour;
    graph.backColour = control.backColour;
    return graph;
}

bool endGraph(Control& control) {
    const std::shared_ptr<Graph> graph = std::exchange(control.graph, nullptr);
    control.font = graph->font;
    control.foreColour = graph->foreColour;
    control.backColour = graph->backColour;
    const bool whole = graph->canvas == nullptr || graph->canvas->finish();
    return whole && !graph->failed;
}

void beginPage(Control& control) {
    Graph& graph = *control.graph;
    ++graph.page;
    graph.x = graph.y = 0;
    if (graph.shows() && std::exchange(graph.begun, true) && !graph.canvas->newPage()) graph.failed = true;
    if (!graph.job.heading.empty()) putHeading(control);
}

Code StartGraph(const Object& object, int x, int y) {
    Control* const control = findControl(object);
    if (control == nullptr) return missing(object);
    if (!takesDrawing(control->type)) return GraphicsNotStarted;
    if (control->graph != nullptr) endGraph(*control);
    Graph& graph = beginGraph(*control, view().canvas(*control));
    graph.originX = x;
    graph.originY = y;
    return Ok;
}

Code EndGraph(const Object& object) {
    const Target target(object);
    if (target.code != Ok) return target.control == nullptr ? target.code : GraphicsNotStarted;
    if (target.control->type == Type::Printer) return GraphicsNotStarted;
    endGraph(*target.control);
    return Ok;
}

Code DrawLine(const Object& object, int x1, int y1, int x2, int y2) {
    return drawOn(object, [=](Canvas& canvas, const Graph& g, Ink ink) {
        canvas.line(g.originX + x1, g.originY + y1, g.originX + x2, g.originY + y2, ink);
    });
}

Code DrawPoint(const Object& object, int x, int y) {
    return drawOn(object, [=](Canvas& canvas, const Graph& g, Ink ink) {
        canvas.point(g.originX + x, g.originY + y, ink);
    });
}

Code DrawShape(const Object& object, ShapeKind kind, int x, int y, int w, int h) {
    return drawOn(object, [=](Canvas& canvas, const Graph& g, Ink ink) {
        if (w > 0 && h > 0) canvas.shape(kind, {g.originX + x, g.originY + y, w, h}, ink);
    });
}

Code DrawTextstr(const Object& object, std::string_view text) {
    const Target target(object);
    if (target.code == Ok) putText(*target.control, text);
    return target.code;
}

Code DrawPicture(const Object& object, std::string_view picture, int x, int y, int w, int h) {
    const Target target(object);
    if (target.code != Ok) return target.code;
    const Answer<Picture> loaded = LoadPicture(picture);
    if (loaded.code != Ok) return loaded.code;
    const Rect place = {x, y, w > 0 ? w : loaded.value.width, h > 0 ? h : loaded.value.height};
    return drawOn(object, [&](Canvas& canvas, const Graph& g, Ink) {
        canvas.picture({g.originX + place.x, g.originY + place.y, place.w, place.h},
                       PictureName(loaded.value));
    });
}

Code DrawPicture(const Object& object, const Picture& picture, int x, int y, int w, int h) {
    return DrawPicture(object, PictureName(picture), x, y, w, h);
}

Code DrawWindow(const Object& object, const Object& from) {
    const Target target(object);
    if (target.code != Ok) return target.code;
    const Window* const window = findWindow(from);
    if (window == nullptr) return WindowNotLoaded;
    return drawOn(object, [&](Canvas& canvas, const Graph& g, Ink) {
        canvas.window(g.originX + g.x, g.originY + g.y, *window);
    });
}

Code DrawControl(const Object& object, std::string_view properties, int x, int y, int w, int h) {
    const Target target(object);
    if (target.code != Ok) return target.code;
    return drawOn(object, [&](Canvas& canvas, const Graph& g, Ink) {
        if (w > 0 && h > 0)
            canvas.control({g.originX + x, g.originY + y, w, h}, properties, target.control->font);
    });
}

Answer<int> GetCurrentX(const Object& object) {
    return askGraph(object, &Graph::x);
}
Code SetCurrentX(const Object& object, int x) {
    return setPoint(object, &Graph::x, x);
}
Answer<int> GetCurrentY(const Object& object) {
    return askGraph(object, &Graph::y);
}
Code SetCurrentY(const Object& object, int y) {
    return setPoint(object, &Graph::y, y);
}

}  // namespace tarn::platform
