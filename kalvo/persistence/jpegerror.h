#pragma once
// libjpeg under our rules: it reports errors through a callback that must not return, and no exception may
// pass through its frames. Each piece of work with it is a step that is left by a jump and then throws.

#include <csetjmp>
#include <cstdio>

// libjpeg's header needs <cstdio> before it.
#include <jpeglib.h>

#include "kalvo/frame/kxexception.h"

namespace Zelkor::Kalvo {

/// The error handling of one compressor or decompressor.
class JpegErrors {
public:
    /// @param failure  the code of the errors that libjpeg itself finds
    explicit JpegErrors(KX_ERRORS failure);
    JpegErrors(const JpegErrors&) = delete;
    JpegErrors& operator=(const JpegErrors&) = delete;

    /// What goes into the `err` field of a compressor or decompressor.
    jpeg_error_mgr* Manager() { return &m_callbacks.manager; }

    /// Runs `kStep(job)`, which may call libjpeg but must not own anything: it may be left by a jump, and
    /// then the code of the failure is thrown.
    template <auto kStep, class Job>
    void Run(Job& job) {
        if (!Completes([](void* pJob) { kStep(*static_cast<Job*>(pJob)); }, &job))
            throw Exception(m_callbacks.code);
    }

    /// Leaves the step that is running; only for callbacks of libjpeg.
    [[noreturn]] static void LeaveStep(j_common_ptr info, KX_ERRORS code);

private:
    // libjpeg hands back the address of the first member.
    struct Callbacks {
        jpeg_error_mgr manager;
        std::jmp_buf leave;
        KX_ERRORS failure;
        KX_ERRORS code;
    };

    [[noreturn]] static void OnError(j_common_ptr info);
    static void OnMessage(j_common_ptr info, int level);
    bool Completes(void (*step)(void*), void* job);

    Callbacks m_callbacks;
};

}  // namespace Zelkor::Kalvo
