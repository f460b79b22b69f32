// SPDX-License-Identifier: Apache-2.0
//
// A picture of an index tree as text, for tests and tools.
#include "kernel/index/index_filelayout.h"
#include "kernel/index/index_fileops_internal.h"
#include "kernel/index/index_nodes.h"
#include "kernel/run/errorcell.h"
#include "kernel/run/errors.h"
#include "kernel/run/runtime.h"
#include "kernel/text/fixed.h"
#include "kernel/text/numbers.h"

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

std::string nodeText(const KeyView& key, int balance) {
    std::string text = "[";
    for (std::int32_t i = 0; i < key.count; ++i) text += (i != 0 ? "," : "") + partText(key.parts[i]);
    return text + " " + std::to_string(balance) + "]";
}

std::string textOf(const MemoryTree& tree, Offset node) {
    return nodeText(KeyOfNode(NodeKey(node), tree.kinds()), tree.balance(node));
}

// An index in a file, and how its keys are read.
struct PrintedFile : FileTree {
    KeyLayout layout;
};

std::string textOf(const PrintedFile& tree, FileTree::Ref node) {
    std::string bytes;
    DecodedKey key;
    if (!tree.readKeyBytes(node, bytes)) return {};
    DecodeKey(tree.layout, bytes.data(), key);
    return nodeText(key.view, tree.balance(node));
}

// `before` stands in front of the node's line: a "|" for each line that passes it. `side` is the one of its
// parent where the node hangs, -1 for the root.
template <class Tree, class Ref>
void draw(const Tree& tree, Ref node, const std::string& before, int side, std::string& picture) {
    if (node == 0) return;
    const auto beside = [&](int childSide) {
        return side < 0 ? std::string() : before + (side == childSide ? "  " : "| ");
    };
    draw(tree, tree.child(node, 0), beside(0), 0, picture);
    if (!picture.empty()) picture += '\n';
    picture += before + (side < 0 ? "" : "|-") + textOf(tree, node);
    draw(tree, tree.child(node, 1), beside(1), 1, picture);
}

// False for damage.
template <class Tree>
bool drawTree(const Tree& tree, std::string& picture) {
    std::int32_t count = 0;
    const bool walked = WalkInOrder(tree, [&](auto) { return ++count <= MaxPrintedNodes; });
    if (!walked && count <= MaxPrintedNodes) return false;
    if (count == 0) {
        picture = "Index is empty.";
    } else if (count > MaxPrintedNodes) {
        picture = "Cannot print, too many nodes (maximum is " + std::to_string(MaxPrintedNodes) + ").";
    } else {
        draw(tree, tree.root(), "", -1, picture);
    }
    return true;
}

// That a file cannot be opened is told by the picture alone.
bool openQuietly(const IndexBlock& block, PrintedFile& tree) {
    const ErrorCellAside aside;
    tree.layout = LayoutOfBlock(block);
    return OpenIndexOf(block, tree);
}

bool pictureOf(const RecordDescriptor& root, const IndexBlock& block, std::string& picture) {
    if (block.recordSize == 0) return drawTree(MemoryTree(const_cast<RecordDescriptor&>(root)), picture);
    PrintedFile tree;
    if (openQuietly(block, tree)) return drawTree(tree, picture) && tree.failure() == 0;
    picture = "Cannot open table index.";
    return true;
}

}  // namespace

void IndexPrint(const RecordDescriptor* root, const IndexBlock& block, StringDescriptor* text) {
    const bool good = block.recordSize == 0 ? AcceptRoot(root) : root != nullptr;
    if (!good) SetError(ERR_INDEX_TYPE);
    StringClear(text);
    if (!good) return;
    try {
        std::string picture;
        if (!pictureOf(*root, block, picture)) return SetError(ERR_INDEX_TYPE);
        StringAssignView(text, picture);
    } catch (const std::bad_alloc&) {
        SetError(ERR_OUT_OF_MEMORY);
    }
}

}  // namespace tarn
