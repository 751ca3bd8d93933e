#include "SignalCleanup.h"

#include <QFile>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {
constexpr int kSlots = 16;
constexpr int kMaxDepth = 8;
// Entries removed while a folder is read may hide others from the same read.
constexpr int kPasses = 4;
const int kSignals[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE};

struct Slot {
    std::atomic<bool> used{false};
    char path[PATH_MAX] = {};
};
Slot registered[kSlots];
std::atomic<bool> installed{false};

bool isDotEntry(const char* name) {
    return name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0'));
}

// Only open, getdents, unlink and close: nothing here allocates or locks.
void removeTree(int parent, const char* name, int depth);

bool removeEntries(int folder, int depth) {
    alignas(dirent64) char buffer[4096];
    bool removedAny = false;
    ::lseek(folder, 0, SEEK_SET);
    for (;;) {
        const ssize_t read = ::getdents64(folder, buffer, sizeof buffer);
        if (read <= 0)
            return removedAny;
        for (ssize_t at = 0; at < read;) {
            const auto* entry = reinterpret_cast<const dirent64*>(buffer + at);
            at += entry->d_reclen;
            if (isDotEntry(entry->d_name))
                continue;
            if (::unlinkat(folder, entry->d_name, 0) == 0)
                removedAny = true;
            else if (errno == EISDIR || entry->d_type == DT_DIR) {
                removeTree(folder, entry->d_name, depth + 1);
                removedAny = true;
            }
        }
    }
}

void removeTree(int parent, const char* name, int depth) {
    if (depth > kMaxDepth)
        return;
    const int folder = ::openat(parent, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (folder >= 0) {
        for (int pass = 0; pass < kPasses && removeEntries(folder, depth); ++pass) {
        }
        ::close(folder);
    }
    ::unlinkat(parent, name, AT_REMOVEDIR);
}

void onSignal(int signal) {
    const int savedErrno = errno;
    for (Slot& slot : registered)
        if (slot.used.load(std::memory_order_acquire))
            removeTree(AT_FDCWD, slot.path, 0);
    errno = savedErrno;
    // Ends the process the way the signal would have without us.
    struct sigaction action {};
    action.sa_handler = SIG_DFL;
    ::sigemptyset(&action.sa_mask);
    ::sigaction(signal, &action, nullptr);
    ::raise(signal);
}
} // namespace

void SignalCleanup::install() {
    if (installed.exchange(true))
        return;
    struct sigaction action {};
    action.sa_handler = onSignal;
    ::sigemptyset(&action.sa_mask);
    for (const int signal : kSignals)
        ::sigaddset(&action.sa_mask, signal);
    for (const int signal : kSignals) {
        struct sigaction previous {};
        ::sigaction(signal, nullptr, &previous);
        // A signal the caller chose to ignore stays ignored.
        if (previous.sa_handler != SIG_IGN)
            ::sigaction(signal, &action, nullptr);
    }
}

int SignalCleanup::add(const QString& folder) {
    const QByteArray path = QFile::encodeName(folder);
    if (path.isEmpty() || path.size() >= PATH_MAX)
        return -1;
    for (int i = 0; i < kSlots; ++i) {
        if (registered[i].used.load(std::memory_order_acquire))
            continue;
        std::memcpy(registered[i].path, path.constData(), size_t(path.size()) + 1);
        registered[i].used.store(true, std::memory_order_release);
        return i;
    }
    return -1;
}

void SignalCleanup::remove(int slot) {
    if (slot >= 0 && slot < kSlots)
        registered[slot].used.store(false, std::memory_order_release);
}
