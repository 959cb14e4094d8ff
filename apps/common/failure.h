#pragma once
// Failures on their way from the spot that meets them to the line that tells the user.

#include <optional>
#include <string>
#include <type_traits>

#include "kalvo/frame/kxerror.h"

namespace App {

// What went wrong, and the library's code for it.
struct Failure {
    std::string reason;
    int code;

    // The failure of that code, in words, with what to try.
    static Failure Of(int code);
    // One of the system: "cannot be opened: No such file or directory".
    static Failure OfSystem(const std::string& what, KX_ERRORS code);
};

// Runs an operation of the library and returns its result; throws the failure that it leaves in the slot.
template <class Operation>
auto Checked(const Operation& operation) {
    const auto checkSlot = [] {
        if (KxFailure()) throw Failure::Of(KxGetError());
    };
    KxOk();
    if constexpr (std::is_void_v<std::invoke_result_t<Operation>>) {
        operation();
        checkSlot();
    } else {
        auto result = operation();
        checkSlot();
        return result;
    }
}

// A text from outside as one line: control characters are escaped.
std::string Escaped(const std::string& text);

// Prints the exception being handled as "PROGRAM: FILE: reason (code)" on the standard error stream.
Failure ReportCurrentFailure(const std::string& file);

// Tells what the user should know of a success: prints "PROGRAM: FILE: note" there, or does what was set.
void Note(const std::string& file, const std::string& note);
void SetNoteHandler(void (*handler)(const std::string& file, const std::string& note));

// Runs what belongs to one file; reports the failure, if there is one, and returns it.
template <class Operation>
std::optional<Failure> Attempt(const std::string& file, const Operation& operation) {
    try {
        operation();
        return std::nullopt;
    } catch (...) {
        return ReportCurrentFailure(file);
    }
}

}  // namespace App
