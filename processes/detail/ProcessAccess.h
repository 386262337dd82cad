#pragma once

// The process operations' shared machinery: the translation of the
// library's access words into the system's rights, and the identifier and
// name forms that every operation derives from its handle form.

#include <utility>

#include "../../platform/Handles.h"
#include "../ZKProcess.h"

namespace zk64::detail {

// The access words the library itself opens processes with.
constexpr unsigned long long kWordQuery = ZKProcessAccessQuery;                                          // 0x8
constexpr unsigned long long kWordQueryLimited = ZKProcessAccessQueryLimited;                            // 0x10
constexpr unsigned long long kWordSetInformation = ZKProcessAccessSetInformation;                        // 0x20
constexpr unsigned long long kWordQueryAndRead = ZKProcessAccessQuery | ZKProcessAccessVMRead;           // 0x408
constexpr unsigned long long kWordWriteMemory = ZKProcessAccessVMOperation | ZKProcessAccessVMWrite;     // 0xA00

// One bit of a library word and the system right it stands for.
struct AccessBit {
    unsigned long long word;
    unsigned long right;
};

// The system rights for a library word: the OR of the rights of its bits
// that the table holds; other bits are ignored.
template <std::size_t N>
constexpr unsigned long TranslateWord(AccessBit const (&table)[N], unsigned long long word)
{
    unsigned long rights = 0;
    for (AccessBit const& bit : table) {
        if ((word & bit.word) != 0) rights |= bit.right;
    }
    return rights;
}

unsigned long ProcessRights(unsigned long long word);
unsigned long TokenRights(unsigned long long word);

// The identifier form of an operation: opens `pid` with `word`, runs
// `work(handle)` and closes the handle, also when the work failed. A failed
// open gives `failure`.
template <class Result, class Work>
Result WithProcess(unsigned long pid, unsigned long long word, Result failure, Work&& work)
{
    ProcessHandle const process = OpenProcessHandle(pid, word);
    if (process.handle == nullptr) return failure;
    Result result = std::forward<Work>(work)(process);
    CloseProcessHandle(process);
    return result;
}

// The name form: the identifier of the first process of that name, then
// the identifier form. `notFound` is the result when there is none (most
// operations give their failure value; a few answer true).
template <class Result, class Work>
Result WithNamedProcess(ZKString const& name, unsigned long long word, Result failure, Result notFound, Work&& work)
{
    unsigned long const pid = GetProcessID(name);
    if (pid == 0) return notFound;
    return WithProcess(pid, word, std::move(failure), std::forward<Work>(work));
}

}  // namespace zk64::detail

// Defines the identifier and name forms of an operation from its handle
// form. PARAMS and ARGS are the further parameters and arguments, each in
// parentheses with a leading comma (or empty parentheses). `notFound` is the
// name form's result for a name that no process has.
#define ZK_PROCESS_FORMS_PARAMS(...) __VA_ARGS__
#define ZK_PROCESS_ID_AND_NAME_FORMS_NOT_FOUND(Result, Name, word, failure, notFound, PARAMS, ARGS)             \
    Result Name(unsigned long pid ZK_PROCESS_FORMS_PARAMS PARAMS)                                             \
    {                                                                                                         \
        return zk64::detail::WithProcess<Result>(                                                             \
            pid, word, failure, [&](ProcessHandle process) { return Name(process ZK_PROCESS_FORMS_PARAMS ARGS); }); \
    }                                                                                                         \
    Result Name(ZKString const& name ZK_PROCESS_FORMS_PARAMS PARAMS)                                          \
    {                                                                                                         \
        return zk64::detail::WithNamedProcess<Result>(                                                        \
            name, word, failure, notFound,                                                                    \
            [&](ProcessHandle process) { return Name(process ZK_PROCESS_FORMS_PARAMS ARGS); });              \
    }
#define ZK_PROCESS_ID_AND_NAME_FORMS(Result, Name, word, failure, PARAMS, ARGS) \
    ZK_PROCESS_ID_AND_NAME_FORMS_NOT_FOUND(Result, Name, word, failure, failure, PARAMS, ARGS)
