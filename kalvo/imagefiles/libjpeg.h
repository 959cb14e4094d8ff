#pragma once
// libjpeg under our rules: errors end a step of work and become values, data that it could only guess is an
// error, and neither a forged size nor a row of scans costs more than the stream is worth.

#include <csetjmp>
#include <cstdint>
#include <cstdio>

// libjpeg's header needs <cstdio> before it.
#include <jpeglib.h>

#include "kalvo/frame/kxexception.h"

namespace Zelkor::Platform {

// Why a step of work with libjpeg ended.
enum class JpegFault {
    None,
    Damaged,      // not a JPEG stream, or a broken one; also an image that none can hold
    Cut,          // the stream ends too early
    Unsupported,  // a kind of JPEG stream, or of conversion, that libjpeg does not know
    OutOfMemory,
    BufferFull,  // only by `LeaveStep`
};

// libjpeg reports errors through a callback that must not return, and no exception may pass through its
// frames. So each piece of work with it is a step that may be left by a jump.
class JpegErrors {
public:
    JpegErrors();
    JpegErrors(const JpegErrors&) = delete;
    JpegErrors& operator=(const JpegErrors&) = delete;

    // What goes into the `err` field of a compressor or decompressor.
    jpeg_error_mgr* Manager() { return &m_callbacks.manager; }

    // Runs `kStep(job)`, which may call libjpeg but must not own anything: it may be left by a jump.
    template <auto kStep, class Job>
    [[nodiscard]] JpegFault Run(Job& job) {
        return Complete([](void* pJob) { kStep(*static_cast<Job*>(pJob)); }, &job);
    }

    // Leaves the step that is running; only for callbacks of libjpeg.
    [[noreturn]] static void LeaveStep(j_common_ptr info, JpegFault fault);

private:
    // libjpeg hands back the address of the first member.
    struct Callbacks {
        jpeg_error_mgr manager;
        std::jmp_buf leave;
        JpegFault fault;
    };

    [[noreturn]] static void OnError(j_common_ptr info);
    static void OnMessage(j_common_ptr info, int level);
    JpegFault Complete(void (*step)(void*), void* job);

    Callbacks m_callbacks;
};

// A decompressor that stops at errors and at too many scans.
struct JpegDecoder {
    JpegErrors errors;
    jpeg_decompress_struct info{};
    jpeg_progress_mgr progress{};

    JpegDecoder() { info.err = errors.Manager(); }
    ~JpegDecoder() { jpeg_destroy_decompress(&info); }
    JpegDecoder(const JpegDecoder&) = delete;
    JpegDecoder& operator=(const JpegDecoder&) = delete;

    // Begins the first step.
    void Create();
    // Whether a stream of `bytes` bytes can hold the image that its header declares; an arithmetically coded
    // one may be shorter, so refuse those.
    bool CanStandIn(std::uint64_t bytes) const;
};

// A compressor that stops at errors.
struct JpegEncoder {
    JpegErrors errors;
    jpeg_compress_struct info{};

    JpegEncoder() { info.err = errors.Manager(); }
    ~JpegEncoder() { jpeg_destroy_compress(&info); }
    JpegEncoder(const JpegEncoder&) = delete;
    JpegEncoder& operator=(const JpegEncoder&) = delete;
};

}  // namespace Zelkor::Platform

namespace Zelkor::Kalvo {

// Throws the code of a fault in a file: KX_ERROR_ALLOCATION, KX_ERROR_FILE_READ when the stream ends too
// early, `otherwise` for all others.
void RequireNoFault(Platform::JpegFault fault, KX_ERRORS otherwise);

}  // namespace Zelkor::Kalvo
