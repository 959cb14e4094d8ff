// Vector files into every type of vector.

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <span>
#include <string>
#include <vector>

#include "kalvo/frame/kxerror.h"
#include "kalvo/frame/kxtrace.h"
#include "kalvo/vectors/vectorfile.h"
#include "fuzz/require.h"

namespace {

using namespace Zelkor::Kalvo;
using Fuzzing::Require;
using Bytes = std::vector<std::uint8_t>;

// A file in memory, for what is loaded by name.
class MemoryFile {
public:
    explicit MemoryFile(const Bytes& contents) : m_descriptor(memfd_create("vector", 0)) {
        Require(
            write(m_descriptor, contents.data(), contents.size()) == static_cast<ssize_t>(contents.size()),
            "the test itself");
    }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    ~MemoryFile() { close(m_descriptor); }

    std::string Name() const { return "/proc/self/fd/" + std::to_string(m_descriptor); }
    Bytes Contents() const {
        Bytes contents(static_cast<std::size_t>(lseek(m_descriptor, 0, SEEK_END)));
        const ssize_t read = pread(m_descriptor, contents.data(), contents.size(), 0);
        Require(read == static_cast<ssize_t>(contents.size()), "the test itself");
        return contents;
    }

private:
    int m_descriptor;
};

template <class T>
void CheckVector(const MemoryFile& file, const Bytes& bytes) {
    KxVectorTemplate<T> vector, again;
    KxOk();
    vector.Load(file.Name().c_str());
    if (KxFailure()) {
        Require(vector.GetMaxElements() * std::uint64_t{sizeof(T)} <= 2 * BelievableBytes(bytes.size()),
                "a forged count takes no memory");
        return;
    }
    const MemoryFile saved({});
    vector.Save(saved.Name().c_str());
    again.Load(saved.Name().c_str());
    Require(KxSuccess() && std::ranges::equal(ElementsOf(vector), ElementsOf(again)),
            "loading loses nothing");
    // What follows the last element is not kept, and runs of version 2 may fit into version 1.
    const Bytes contents = saved.Contents();
    Require(contents.size() <= bytes.size(), "a vector takes no more bytes than it came from");
    Require(contents[2] < bytes[2] || std::ranges::equal(contents, std::span(bytes).first(contents.size())),
            "a vector is saved as it was");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t count) {
    KxSetTraceMode(KX_TRACE_MODE_SILENT);
    const Bytes bytes(data, data + count);
    const MemoryFile file(bytes);
    CheckVector<KxBW8>(file, bytes);
    CheckVector<KxBW16>(file, bytes);
    CheckVector<KxBW32>(file, bytes);
    CheckVector<KxC24>(file, bytes);
    CheckVector<KxINT32>(file, bytes);
    CheckVector<KxRun>(file, bytes);
    return 0;
}
