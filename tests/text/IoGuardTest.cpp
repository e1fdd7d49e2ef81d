#include "xml/text/internal/IoGuard.h"
#include <gtest/gtest.h>
#include <ios>
#include <locale>
#include <new>
#include <pthread.h>
#include <sstream>
#include <stdexcept>

namespace {

TEST(IoGuardTest, WithoutExceptionsLetsNothingOut) {
    int done = 0;
    Xml::withoutExceptions([&] { ++done; });
    EXPECT_NO_THROW(Xml::withoutExceptions([&] {
        ++done;
        throw std::bad_alloc();
    }));
    EXPECT_NO_THROW(Xml::withoutExceptions([&] {
        ++done;
        throw done;
    }));
    EXPECT_EQ(done, 3);
}

TEST(IoGuardTest, WithoutFailuresLetsAllOutButFailuresOfStreams) {
    EXPECT_NO_THROW(Xml::withoutFailures([] { throw std::ios_base::failure("refused"); }));
    EXPECT_THROW(Xml::withoutFailures([] { throw std::bad_alloc(); }), std::bad_alloc);
    EXPECT_THROW(Xml::withoutFailures([] { throw std::runtime_error("other"); }), std::runtime_error);
}

bool wentOn = false;

void* endWithin(void* result) {
    Xml::withoutExceptions([result] { pthread_exit(result); });
    wentOn = true;
    return nullptr;
}

TEST(IoGuardTest, TheEndOfAThreadPassesThrough) {
    int token = 0;
    pthread_t thread;
    ASSERT_EQ(pthread_create(&thread, nullptr, endWithin, &token), 0);
    void* result = nullptr;
    ASSERT_EQ(pthread_join(thread, &result), 0);
    EXPECT_EQ(result, &token);
    EXPECT_FALSE(wentOn);
}

// Bytes are changed on their way, as by a codeset.
class Changing : public std::codecvt<char, char, std::mbstate_t> {
protected:
    bool do_always_noconv() const noexcept override { return false; }
};

TEST(IoGuardTest, SaysWhetherABuffersLocaleLeavesBytes) {
    std::stringbuf buffer;
    EXPECT_TRUE(Xml::leavesBytes(buffer));
    buffer.pubimbue(std::locale(std::locale::classic(), new Changing));
    EXPECT_FALSE(Xml::leavesBytes(buffer));
}

}  // namespace
