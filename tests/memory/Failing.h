#pragma once

#include <exception>
#include <functional>
#include <new>
#include <string>

// Memory that runs out. The operators new of this program count, and let one allocation fail when a test asks for it.
namespace Xml::test {

// One run of a scenario, in which the allocation with one number fails.
class Attempt {
public:
    // With 0 none fails.
    explicit Attempt(long failingAllocation);
    Attempt(const Attempt&) = delete;
    Attempt& operator=(const Attempt&) = delete;

    // Whether the operation came to its end. Only what it allocates is counted, over all calls; when the one that is
    // due fails, std::bad_alloc must come out of the operation, and nothing else may ever.
    template <class Operation>
    bool operator()(Operation operation) {
        return run(operation, true);
    }

    // The same of an operation that must take the failure upon itself. It must come to its end.
    template <class Operation>
    void absorbed(Operation operation) {
        run(operation, false);
    }

    // Whether an allocation has failed.
    bool hasFailed() const;

private:
    template <class Operation>
    bool run(Operation& operation, bool mustShow) {
        bool complete = false;
        std::string thrown;
        begin();
        try {
            operation();
            end();
            complete = true;
        } catch (const std::bad_alloc&) {
            end();
            thrown = "std::bad_alloc";
        } catch (const std::exception& e) {
            end();
            thrown = e.what();
        } catch (...) {
            end();
            thrown = "something else";
        }
        judge(thrown, mustShow);
        return complete;
    }

    static void begin();
    static void end();
    static void judge(const std::string& thrown, bool mustShow);
};

// Runs the scenario again and again: once as it is, so that what is made only once is there, and then with the first,
// the second, ... allocation failing, until none is left to fail. A scenario makes and checks what it needs itself;
// what it allocates outside of the attempt is neither counted nor refused. At its end everything it has made must be
// gone: memory and open files. It ends with the first run that fails the test.
//
//     forEachFailingAllocation([](Attempt& attempt) {
//         Element top("top");
//         if (!attempt([&] { top.addElement("below", "text"); })) EXPECT_EQ(dump(&top), "top");
//     });
void forEachFailingAllocation(const std::function<void(Attempt&)>& scenario);

// The same with memory that stays out once it has run out, until the operation ends.
void forEachShortage(const std::function<void(Attempt&)>& scenario);

// Takes diagnostics without allocating, and counts them.
class QuietMessages {
public:
    QuietMessages();
    ~QuietMessages();
    QuietMessages(const QuietMessages&) = delete;
    QuietMessages& operator=(const QuietMessages&) = delete;

    int count() const;

private:
    void (*handlerBefore)(const char*, ...);
    bool outBefore;
};

}  // namespace Xml::test
