#pragma once
// Memory and files that fail at will. Takes the place of the functions of the C library in the program that
// links it, so what libraries below ours allocate counts too.

namespace Zelkor::Kalvo::Fuzzing {

enum class Fault {
    NoMemory,     // an allocation gives nothing
    BrokenDisk,   // a call fails, after half of its bytes where it reads
    FullDisk,     // a call that stores fails
    ShortWrite,   // a write stores half of its bytes
    Interrupted,  // a call is interrupted by a signal
};

// From its construction to its end: the calls that a fault can meet count, and call `first` (from 0) fails;
// so do all after it when the fault stays. Of the thread that makes it.
class FailingCalls {
public:
    FailingCalls(Fault fault, long first, bool stays);
    ~FailingCalls();
    FailingCalls(const FailingCalls&) = delete;
    FailingCalls& operator=(const FailingCalls&) = delete;

    static bool HasFailed();  // since the last construction
};

// What the process holds of memory, and by how much it was more, at the most, since a call of the other
// function.
long LiveBlocks();
void StartCountingBytes();
long MostBytes();

}  // namespace Zelkor::Kalvo::Fuzzing
