#pragma once
// The record in which the library keeps everything that belongs to one thread.

#include <array>
#include <cstdint>

#include "kalvo/base/win32types.h"
#include "kalvo/frame/kxerror.h"
#include "kalvo/frame/kxtrace.h"

/// A logical palette of up to 256 entries.
struct KxLogicalPalette {
    WORD m_un16Version = 0x300;
    WORD m_un16NumEntries = 0;
    std::array<PALETTEENTRY, 256> m_Entries;
};

/// The description of a bitmap with room for 256 colours; the first three also serve as colour masks.
struct KxBitmapInfo {
    BITMAPINFOHEADER m_Header;
    std::array<RGBQUAD, 256> m_Colors;
};

/// One reading of the stopwatch: the counter, and the time of day for systems without one.
struct KxTimeReading {
    std::int64_t m_n64Counter;
    SYSTEMTIME m_SystemTime;
};

/// Per-thread state. A thread gets its record on its first call that needs one and loses it when it ends; the
/// thread that loads the library has one from the start. A thread that outlives the library, where a program
/// unloads it, calls `CloseThreadLocalStorage` before, or leaves its record behind. Use the functions that
/// read and write the fields.
struct OzzoTLSStruct {
    KX_ERRORS m_eError = KX_OK;                          ///< the error slot
    KX_TRACE_MODE m_eTraceMode = KX_TRACE_MODE_MESSAGE;  ///< the trace mode
    KxBitmapInfo m_BitmapInfo;                           ///< bitmap being displayed; not set at first
    KxLogicalPalette m_GrayPalette;                      ///< filled on first use
    KxLogicalPalette m_ColorPalette;                     ///< filled on first use
    HPALETTE m_hGrayPalette = nullptr;                   ///< made on first use, deleted with the record
    HPALETTE m_hColorPalette = nullptr;                  ///< made on first use, deleted with the record
    HPALETTE m_hPreviousPalette = nullptr;               ///< what the device context had selected before
    HDC m_hImageDC = nullptr;                            ///< last image context opened; the caller's
    KxTimeReading m_StartTime;                           ///< not set at first
    KxTimeReading m_StopTime;                            ///< not set at first
    std::uint32_t m_un32JpegQuality = 50;                ///< 0 to 100
    std::uint8_t m_un8TiffThreshold = 128;               ///< a grey value of at least this is a 1 bit
    std::uint32_t m_un32TiffStripSize = 8192;            ///< bytes; 0 for a single strip
    std::int32_t m_bSafeWriting = 0;                     ///< whether files are replaced when they are whole
    std::uint64_t m_un64MostPixels = 0;                  ///< of an image that is loaded; 0 for no limit
    std::uint64_t m_un64MostBytes = 0;                   ///< of what is loaded; 0 for no limit
};

/// The calling thread's record, made on demand; null when it can't be had.
KX_API OzzoTLSStruct* KxGetTLSPtr();

/// Gives the calling thread a fresh record; an earlier one is not released.
extern "C" KX_API void InitializeThreadLocalStorage();

/// Releases the calling thread's record, as happens when a thread ends.
extern "C" KX_API void CloseThreadLocalStorage();
