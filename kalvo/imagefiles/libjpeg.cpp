// The callbacks by which libjpeg reports errors, warnings and progress, and the jump out of it.

#include "kalvo/imagefiles/libjpeg.h"

#include <jerror.h>

#include <algorithm>

namespace Zelkor::Platform {
namespace {

// A scan over all blocks may take a few bytes of stream; only a bound on their number bounds the time.
constexpr int kMaxScans = 64;

JpegFault FaultOf(int message) {
    switch (message) {
    case JERR_OUT_OF_MEMORY:
        return JpegFault::OutOfMemory;
    case JERR_BAD_PRECISION:
    case JERR_CONVERSION_NOTIMPL:
    case JERR_FRACT_SAMPLE_NOTIMPL:
    case JERR_SOF_UNSUPPORTED:
        return JpegFault::Unsupported;
    default:
        return JpegFault::Damaged;
    }
}

void OnProgress(j_common_ptr info) {
    if (reinterpret_cast<j_decompress_ptr>(info)->input_scan_number > kMaxScans)
        JpegErrors::LeaveStep(info, JpegFault::Damaged);
}

}  // namespace

JpegErrors::JpegErrors() {
    jpeg_std_error(&m_callbacks.manager);
    m_callbacks.manager.error_exit = OnError;
    m_callbacks.manager.emit_message = OnMessage;
    m_callbacks.fault = JpegFault::None;
}

void JpegErrors::LeaveStep(j_common_ptr info, JpegFault fault) {
    auto* callbacks = reinterpret_cast<Callbacks*>(info->err);
    callbacks->fault = fault;
    std::longjmp(callbacks->leave, 1);
}

void JpegErrors::OnError(j_common_ptr info) { LeaveStep(info, FaultOf(info->err->msg_code)); }

// libjpeg goes on after broken data, filling the picture with grey, and only warns. For us it is a failure.
void JpegErrors::OnMessage(j_common_ptr info, int /*level*/) {
    switch (info->err->msg_code) {
    case JWRN_JPEG_EOF:
    case JWRN_HIT_MARKER:
        LeaveStep(info, JpegFault::Cut);
    case JWRN_HUFF_BAD_CODE:
    case JWRN_MUST_RESYNC:
        LeaveStep(info, JpegFault::Damaged);
    default:
        break;
    }
}

// The frame that holds the jump point has plain data only: nothing in it is lost when libjpeg jumps back.
JpegFault JpegErrors::Complete(void (*step)(void*), void* job) {
    if (setjmp(m_callbacks.leave) != 0) return m_callbacks.fault;
    step(job);
    return JpegFault::None;
}

void JpegDecoder::Create() {
    jpeg_create_decompress(&info);
    progress.progress_monitor = OnProgress;
    info.progress = &progress;
}

// A header may declare far more than follows it. Every block of 8 x 8 samples takes at least one bit of
// stream, so forged sizes cost a comparison, not memory.
bool JpegDecoder::CanStandIn(std::uint64_t bytes) const {
    std::uint64_t blocks = 0;
    for (int i = 0; i < info.num_components; ++i) {
        const jpeg_component_info& component = info.comp_info[i];
        blocks = std::max(blocks, std::uint64_t{component.width_in_blocks} * component.height_in_blocks);
    }
    return blocks / 8 <= bytes;
}

}  // namespace Zelkor::Platform

namespace Zelkor::Kalvo {

void RequireNoFault(Platform::JpegFault fault, KX_ERRORS otherwise) {
    switch (fault) {
    case Platform::JpegFault::None:
        return;
    case Platform::JpegFault::OutOfMemory:
        throw Exception(KX_ERROR_ALLOCATION);
    case Platform::JpegFault::Cut:
        throw Exception(KX_ERROR_FILE_READ);
    default:
        throw Exception(otherwise);
    }
}

}  // namespace Zelkor::Kalvo
