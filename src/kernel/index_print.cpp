// SPDX-License-Identifier: Apache-2.0
#include "kernel/errors.h"
#include "kernel/fixed.h"
#include "kernel/index_nodes.h"
#include "kernel/numbers.h"
#include "kernel/runtime.h"

#include <new>
#include <string>

namespace tarn {

namespace {

// Each node stands on a line of its own, so a key has no line ends.
std::string oneLine(std::string_view bytes) {
    std::string text(bytes);
    for (char& c : text) {
        if (static_cast<unsigned char>(c) < ' ') c = '.';
    }
    return text;
}

std::string partText(const KeyPart& part) {
    switch (part.kind) {
    case KindBoolean: return BooleanToText(*part.at != 0);
    case KindEnum: return std::to_string(ReadAt<std::uint8_t>(part.at));
    case KindInteger: return std::to_string(ReadAt<std::int32_t>(part.at));
    case KindFixed: return FixedToText(ReadAt<Fixed>(part.at));
    case KindReal: return RealToText(ReadAt<double>(part.at), RealTextDecimals);
    default: return oneLine({part.at, static_cast<std::size_t>(part.bytes)});
    }
}

std::string nodeText(const MemoryTree& tree, Offset node) {
    const KeyView key = KeyOfNode(NodeKey(node), tree.kinds());
    std::string text = "[";
    for (std::int32_t i = 0; i < key.count; ++i) text += (i != 0 ? "," : "") + partText(key.parts[i]);
    return text + " " + std::to_string(tree.balance(node)) + "]";
}

// `before` stands in front of the node's line: a "|" for each line that passes it. `side` is the one of its
// parent where the node hangs, -1 for the root.
void draw(const MemoryTree& tree, Offset node, const std::string& before, int side, std::string& picture) {
    if (node == 0) return;
    const auto beside = [&](int childSide) {
        return side < 0 ? std::string() : before + (side == childSide ? "  " : "| ");
    };
    draw(tree, tree.child(node, 0), beside(0), 0, picture);
    if (!picture.empty()) picture += '\n';
    picture += before + (side < 0 ? "" : "|-") + nodeText(tree, node);
    draw(tree, tree.child(node, 1), beside(1), 1, picture);
}

std::string pictureOf(const RecordDescriptor& root, std::int32_t count) {
    if (count == 0) return "Index is empty.";
    if (count > MaxPrintedNodes)
        return "Cannot print, too many nodes (maximum is " + std::to_string(MaxPrintedNodes) + ").";
    std::string picture;
    const MemoryTree tree(const_cast<RecordDescriptor&>(root));
    draw(tree, tree.root(), "", -1, picture);
    return picture;
}

}  // namespace

void IndexPrint(const RecordDescriptor* root, const IndexBlock& block, StringDescriptor* text) {
    if (!AcceptRoot(root)) return StringClear(text);
    if (block.recordSize != 0) return StringAssignView(text, "Cannot open table index.");
    const std::int32_t count = IndexCount(root, block);
    if (count == 0 && root->data != 0) return StringClear(text);
    try {
        StringAssignView(text, pictureOf(*root, count));
    } catch (const std::bad_alloc&) {
        StringClear(text);
        SetError(ERR_OUT_OF_MEMORY);
    }
}

}  // namespace tarn
