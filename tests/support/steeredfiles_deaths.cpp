// SPDX-License-Identifier: Apache-2.0
//
// Calls that fail, processes that die, and what a death of the machine leaves.
#include "support/steeredfiles_nodes.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace tarn::os {

void SteeredFiles::clearLog() {
    log_.clear();
    calls_ = 0;
    kindCalls_.fill(0);
}

void SteeredFiles::failAt(int call, FileError error) {
    clearLog();
    failure_ = {call, error};
}

void SteeredFiles::failAt(FileCall kind, int call, FileError error) {
    clearLog();
    kindFailures_[static_cast<std::size_t>(kind)] = {call, error};
}

void SteeredFiles::failAlways(FileCall kind, FileError error) {
    always_[static_cast<std::size_t>(kind)] = error;
}

void SteeredFiles::stopFailing() {
    failure_ = {};
    kindFailures_.fill({});
    always_.fill(FileError::None);
    freeBytes_ = std::numeric_limits<std::int64_t>::max();
    dieAt_ = 0;
}

void SteeredFiles::dieAt(int call, bool midway) {
    clearLog();
    dieAt_ = call;
    midway_ = midway;
}

void SteeredFiles::revive() {
    dead_ = dying_ = false;
    dieAt_ = 0;
    open_.clear();
}

void SteeredFiles::forget(const NodePointer& node, Names names, const Forget& forgetBytes,
                          std::vector<const Node*>& seen) {
    if (std::find(seen.begin(), seen.end(), node.get()) != seen.end()) return;
    seen.push_back(node.get());
    forgetBytes(*node);
    node->inode = nextInode_++;  // nobody knows a file from before
    if (names == Names::Lost) node->names = node->lastingNames;
    settle(*node);
    for (const auto& [name, child] : node->names) forget(child, names, forgetBytes, seen);
}

void SteeredFiles::dieAsMachine(Names names, const Forget& forgetBytes) {
    revive();
    current_ = "/";
    std::vector<const Node*> seen;
    forget(root_, names, forgetBytes, seen);
}

void SteeredFiles::afterMachineDeath(Names names, Overwritten overwritten) {
    dieAsMachine(names, [&](Node& node) {
        if (overwritten == Overwritten::Lost || !node.everSynced) node.state = node.lasting;
    });
}

void SteeredFiles::afterMachineDeath(Names names, const std::function<bool()>& keeps) {
    dieAsMachine(names, [&](Node& node) {
        if (node.kind != AFile) return;
        node.state.bytes = node.lasting.bytes;
        for (const Change& change : node.unsynced)
            if (keeps()) apply(change, node.state.bytes);
    });
}

// The failure of this call, if one was ordered for it.
FileError SteeredFiles::count(FileCall kind, const std::string& text) {
    if (dead_) throw ProcessDeath{};
    const auto at = static_cast<std::size_t>(kind);
    ++kindCalls_[at];
    if (kind < FileCall::OpenRead) {
        ++calls_;
        log_.push_back(text);
        if (dieAt_ == calls_) {
            dead_ = true;
            dying_ = midway_ && kind == FileCall::Write;
            if (!dying_) throw ProcessDeath{};
        }
        if (failure_.at == calls_) return std::exchange(failure_, {}).error;
    }
    if (kindFailures_[at].at == kindCalls_[at]) return std::exchange(kindFailures_[at], {}).error;
    return always_[at];
}

// Room on the disk for at most `bytes`; DiskFull if there is less.
FileError SteeredFiles::take(std::int64_t bytes, std::int64_t& taken) {
    taken = std::min(bytes, std::max<std::int64_t>(freeBytes_, 0));
    if (freeBytes_ != std::numeric_limits<std::int64_t>::max()) freeBytes_ -= taken;
    return taken < bytes ? FileError::DiskFull : FileError::None;
}

// Room that is given back.
void SteeredFiles::give(std::size_t bytes) {
    if (freeBytes_ != std::numeric_limits<std::int64_t>::max())
        freeBytes_ += static_cast<std::int64_t>(bytes);
}

// One name less for a file; the last one frees its room.
void SteeredFiles::unlink(Node& node) {
    if (--node.links == 0) give(node.state.bytes.size());
}

}  // namespace tarn::os
