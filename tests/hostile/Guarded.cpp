#include "hostile/Guarded.h"

#include "orvsys/Uni16.h"
#include "support/HeapFunctions.h"
#include "support/Trees.h"
#include "xml/dom/Document.h"
#include "xml/dtd/Dtd.h"
#include "xml/text/Message.h"
#include "xml/xpath/XPath.h"
#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <malloc.h>
#include <new>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/lsan_interface.h>
#else
#include "support/HeapOperators.h"
#include "support/WatchedSlabs.h"
#endif

namespace Xml::test {

namespace {

constexpr std::size_t kStack = 256 * 1024;
constexpr int kNoRoom = 3;  // the child's exit code when it could not even begin

// --- Memory ---

// Of what came from the operators new of this program and was not given back.
std::size_t liveBytes = 0;
std::size_t liveCount = 0;
std::size_t mostBytes = static_cast<std::size_t>(-1);

}  // namespace

void* allocate(std::size_t bytes, bool, std::size_t alignment) noexcept {
    if (bytes > mostBytes || liveBytes > mostBytes - bytes) return nullptr;
    void* const memory = plainMemory(bytes, alignment);
    if (memory == nullptr) return nullptr;
    liveBytes += malloc_usable_size(memory);
    ++liveCount;
    return memory;
}

void giveBack(void* memory) noexcept {
    if (memory == nullptr) return;
    liveBytes -= malloc_usable_size(memory);
    --liveCount;
    std::free(memory);
}

namespace {

// --- The child ---

constexpr std::size_t kPlaceSize = 4096;
char* place = nullptr;  // shared with the parent: what the child is at

struct Child {
    const std::function<std::string()>& job;
    const Bounds& bounds;
    int pipe;
};

void send(int pipe, const std::string& text) {
    std::size_t done = 0;
    while (done < text.size()) {
        const ssize_t count = ::write(pipe, text.data() + done, text.size() - done);
        if (count <= 0) return;
        done += static_cast<std::size_t>(count);
    }
}

void ignoreMessage(const char*, ...) {}

std::string outcomeOf(const Child& child) {
    mostBytes = liveBytes + child.bounds.memory;
    std::string outcome;
    try {
        outcome = child.job();
    } catch (const std::bad_alloc&) {
        mostBytes = static_cast<std::size_t>(-1);
        outcome = "threw std::bad_alloc";
    } catch (const std::exception& e) {
        mostBytes = static_cast<std::size_t>(-1);
        outcome = std::string("threw ") + e.what();
    }
    mostBytes = static_cast<std::size_t>(-1);
    return outcome;
}

void* runJob(void* argument) {
    const Child& child = *static_cast<const Child*>(argument);
    std::size_t countBefore = liveCount;
    send(child.pipe, outcomeOf(child));
    if (liveCount != countBefore) {
        // It may be something that is made only once, such as a standard facet's table: that is not made again.
        countBefore = liveCount;
        outcomeOf(child);
    }
    if (liveCount != countBefore) send(child.pipe, " [memory was not given back]");
    return nullptr;
}

// A thread, since only of one can the stack be had as small as that whatever the process had at first.
bool runOnSmallStack(Child& child) {
    pthread_attr_t attributes;
    pthread_t thread{};
    if (pthread_attr_init(&attributes) != 0 || pthread_attr_setstacksize(&attributes, kStack) != 0) return false;
    return pthread_create(&thread, &attributes, runJob, &child) == 0 && pthread_join(thread, nullptr) == 0;
}

[[noreturn]] void runChild(Child child) {
    const rlimit noCore = {0, 0};
    setrlimit(RLIMIT_CORE, &noCore);
    const rlimit time = {child.bounds.seconds, child.bounds.seconds + 1};
    setrlimit(RLIMIT_CPU, &time);
    alarm(10 * child.bounds.seconds);  // waiting for ever takes no processor time
    mallopt(M_ARENA_MAX, 1);
    Message::InstallMessageHandler(ignoreMessage);
    const bool ran = runOnSmallStack(child);
#ifdef __SANITIZE_ADDRESS__
    if (ran && __lsan_do_recoverable_leak_check() != 0) send(child.pipe, " [memory was not given back]");
#endif
    ::_exit(ran ? 0 : kNoRoom);
}

// --- The parent ---

// What is made only once would look like a leak of the first job that asks for it.
void makeWhatIsMadeOnce() {
    static bool made = false;
    if (made) return;
    made = true;
    const bool before = Message::disableOutput(false);
    Message(std::string(64, 'x'));
    Message::disableOutput(before);
    for (const Source source : kAllSources) {
        errorOf("<!DOCTYPE a [<!ELEMENT a ANY><!ATTLIST a b CDATA 'c'><!ENTITY e '&lt;'>]><a b='&#65;&e;'><b>", source);
    }
    const Outcome outcome = readDocument("<a>x</a>");
    XPath query(outcome.document.get());
    query.GetValue(u"a[1 + 1]", -1);
    query.GetErrorString();
    query.GetValues(u"1");
    query.GetValue(0u, -1);
    Dtd("a").toString();
}

std::string received(int pipe) {
    std::string text;
    std::array<char, 4096> part{};
    ssize_t count;
    while ((count = ::read(pipe, part.data(), part.size())) > 0)
        text.append(part.data(), static_cast<std::size_t>(count));
    return text;
}

std::string endOf(int status) {
    std::string text;
    if (WIFSIGNALED(status)) {
        const int signal = WTERMSIG(status);
        text = "killed by signal " + std::to_string(signal) + " (" + strsignal(signal) + ")";
    } else if (WEXITSTATUS(status) != 0) {
        text = "ended with code " + std::to_string(WEXITSTATUS(status));
    }
    if (!text.empty() && place[0] != '\0') text += std::string(" at ") + place;
    return text;
}

}  // namespace

std::string runGuarded(const std::function<std::string()>& job, const Bounds& bounds) {
    makeWhatIsMadeOnce();
    if (place == nullptr) {
        void* const shared = ::mmap(nullptr, kPlaceSize, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
        if (shared == MAP_FAILED) return "no shared memory";
        place = static_cast<char*>(shared);
    }
    place[0] = '\0';
    int ends[2];
    if (::pipe(ends) != 0) return "no pipe";
    std::fflush(nullptr);
    const pid_t child = ::fork();
    if (child < 0) return "no process";
    if (child == 0) {
        ::close(ends[0]);
        runChild({job, bounds, ends[1]});
    }
    ::close(ends[1]);
    const std::string answer = received(ends[0]);
    ::close(ends[0]);
    int status = 0;
    ::waitpid(child, &status, 0);
    const std::string end = endOf(status);
    return end.empty() ? answer : answer.empty() ? end : answer + ", then " + end;
}

void nowAt(const std::string& what) {
    if (place == nullptr) return;
    const std::size_t length = std::min(what.size(), kPlaceSize - 1);
    std::memcpy(place, what.data(), length);
    place[length] = '\0';
}

}  // namespace Xml::test
