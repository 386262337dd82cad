// The posix backend's handle table (see KernelObjects.h).

#include "KernelObjects.h"

#include <cerrno>
#include <cstdint>
#include <mutex>
#include <unordered_map>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include "../Processes.h"
#include "../Security.h"

namespace zk64::platform::posix {
namespace {

struct Table {
    std::mutex lock;
    std::unordered_map<std::uintptr_t, std::shared_ptr<KernelObject>> objects;
    std::uintptr_t next = 0x1000;
};

Table& Shared()
{
    static Table table;
    return table;
}

}  // namespace

KernelObject::~KernelObject()
{
    if (pidfd >= 0) close(pidfd);
    if (procfd >= 0) close(procfd);
}

HANDLE PseudoProcessHandle() { return reinterpret_cast<HANDLE>(~std::uintptr_t{0}); }

HANDLE Insert(std::shared_ptr<KernelObject> object)
{
    Table& table = Shared();
    std::lock_guard<std::mutex> guard(table.lock);
    std::uintptr_t const key = table.next;
    table.next += 4;
    table.objects.emplace(key, std::move(object));
    return reinterpret_cast<HANDLE>(key);
}

std::shared_ptr<KernelObject> Find(HANDLE handle)
{
    Table& table = Shared();
    std::lock_guard<std::mutex> guard(table.lock);
    auto const found = table.objects.find(reinterpret_cast<std::uintptr_t>(handle));
    return found == table.objects.end() ? nullptr : found->second;
}

bool Remove(HANDLE handle)
{
    Table& table = Shared();
    std::shared_ptr<KernelObject> removed;  // released outside the lock
    std::lock_guard<std::mutex> guard(table.lock);
    auto const found = table.objects.find(reinterpret_cast<std::uintptr_t>(handle));
    if (found == table.objects.end()) return false;
    removed = std::move(found->second);
    table.objects.erase(found);
    return true;
}

bool Alive(int pidfd)
{
    // A pidfd becomes readable when its process exits.
    pollfd entry{pidfd, POLLIN, 0};
    return poll(&entry, 1, 0) == 0;
}

bool Target::Resolve(HANDLE handle, KernelObject::Kind kind, DWORD rights)
{
    if (kind == KernelObject::Kind::Process && handle == PseudoProcessHandle()) {
        ownfd = open("/proc/self", O_PATH | O_DIRECTORY | O_CLOEXEC);
        pid = getpid();
        procfd = ownfd;
        return ownfd >= 0;
    }
    object = Find(handle);
    if (object == nullptr || object->kind != kind) {
        errno = EBADF;
        return false;
    }
    if ((object->access & rights) != rights) {
        errno = EACCES;
        return false;
    }
    if (!Alive(object->pidfd)) {
        errno = ESRCH;
        return false;
    }
    pid = object->pid;
    procfd = object->procfd;
    return true;
}

bool Target::Open(HANDLE handle, DWORD rights) { return Resolve(handle, KernelObject::Kind::Process, rights); }
bool Target::OpenToken(HANDLE handle, DWORD rights) { return Resolve(handle, KernelObject::Kind::Token, rights); }

Target::~Target()
{
    if (ownfd >= 0) close(ownfd);
}

}  // namespace zk64::platform::posix
