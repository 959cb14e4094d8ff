#pragma once
// Archive streams for tests: from bytes, into bytes, and one of another maker.

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "kalvo/streams/kxserializer.h"
#include "tests/support/temporary_folder.h"

namespace Zelkor::Kalvo::Testing {

using Stream = std::unique_ptr<KxSerializer>;

inline Stream ReaderOf(const Bytes& bytes) {
    return Stream(KxSerializer::CreateMemoryReader(bytes.data(), static_cast<unsigned>(bytes.size())));
}

// What `write` puts into a stream.
template <class Operation>
Bytes Written(Operation write) {
    KxMemSerializer writer;
    writer.OpenWriter();
    write(writer);
    return writer.GetBuffer();
}

template <class Operation>
KX_ERRORS CodeThrownBy(Operation operation) {
    try {
        operation();
    } catch (const Exception& exception) {
        return exception.GetError();
    }
    return KX_OK;
}

// Archives into a vector and notes the transfers. Reading too far, it fails in a way of its own.
struct CountingStream : KxOpaqueSerializer {
    explicit CountingStream(bool isWriting, Bytes contents = {})
        : bytes(std::move(contents)), writing(isWriting) {}

    void SerializeBytes(void* data, unsigned int size, const char*) override {
        transfers.emplace_back(data, size);
        auto* field = static_cast<std::uint8_t*>(data);
        if (writing) {
            if (size <= kLargestKept) bytes.insert(bytes.end(), field, field + size);
        } else {
            if (size > bytes.size() - next) throw 42;
            std::copy_n(bytes.data() + next, size, field);
            next += size;
        }
    }
    int IsWriting() const override { return writing; }
    int IsEOS() const override { return next == bytes.size(); }
    void PushStreamPos() override { saved.push_back(next); }
    void PopAndForgetStreamPos() override { saved.pop_back(); }
    void PopAndApplyStreamPos() override {
        next = saved.back();
        saved.pop_back();
    }

    static constexpr unsigned int kLargestKept = 1 << 20;
    Bytes bytes;
    bool writing;
    std::size_t next = 0;
    std::vector<std::size_t> saved;
    std::vector<std::pair<void*, unsigned int>> transfers;
};

}  // namespace Zelkor::Kalvo::Testing
