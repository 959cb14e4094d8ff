#pragma once
// Archive streams: one byte channel that writes or reads, in a named file, a caller's file, or memory.

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "kalvo/base/kxexport.h"
#include "kalvo/frame/kxexception.h"

class KxOpaqueSerializer;

namespace Zelkor::Kalvo {
struct StreamContents;
}
namespace Zelkor::Platform {
class File;
}

/// A stream of archived objects. An object has one routine for both directions: the stream writes each field
/// or reads it back into the same place. A stream belongs to one thread at a time.
///
/// Operations that move bytes or positions throw `Zelkor::Kalvo::Exception`; the others end in the error
/// slot.
/// @code
/// KxImage<KxBW8> image(64, 48);
/// const std::unique_ptr<KxSerializer> writer(KxSerializer::CreateFileWriter("image.kxa"));
/// if (!writer) return;
/// image.Save(writer.get());
/// writer->Close();
/// const std::unique_ptr<KxSerializer> reader(KxSerializer::CreateFileReader("image.kxa"));
/// if (reader && reader->GetNextObjectType() == KxSerializer::ImageBW8) image.Load(reader.get());
/// @endcode
class KX_API KxSerializer {
public:
    /// The type of an archived object, the second byte of its header.
    enum ObjectType : std::int32_t {
        NoObject = 0,  ///< end of the stream
        ImageBW1 = 33,
        ImageBW8 = 34,
        ImageBW16 = 35,
        ImageBW32 = 36,
        ImageC15 = 37,
        ImageC16 = 38,
        ImageC24 = 39,
        ImageYUY2 = 40,
        ImageC24A = 41,
        ImageSubPixel64 = 42,
        ImageComplex64 = 43,
        ImageRaw32 = 44,
        ImageRaw96 = 45,
        ROIBW1 = 46,
        ROIBW8 = 47,
        ROIBW16 = 48,
        ROIBW32 = 49,
        ROIC15 = 50,
        ROIC16 = 51,
        ROIC24 = 52,
        ROIYUY2 = 53,
        ROIC24A = 54,
        ROISubPixel64 = 55,
        ROIComplex64 = 56,
        ROIRaw32 = 57,
        ROIRaw96 = 58,
        JpegHandler = 59,
    };

    /// What to do with an existing file. Any other value behaves as `Overwrite`.
    enum FileWriterMode : std::int32_t {
        NoOverwrite = 0,  ///< refuse it with `KX_ERROR_OVERWRITE_NOT_ALLOWED`
        Overwrite = 1,    ///< truncate it
        Append = 2,       ///< write after its end
    };

    KxSerializer(const KxSerializer&) = delete;
    KxSerializer& operator=(const KxSerializer&) = delete;

    /// The type of the next object, without consuming its header; `NoObject` at the end. Fails with -1 when
    /// the stream is not reading (`KX_ERROR_NOT_OPEN_FOR_READ`) or no header stands there
    /// (`KX_ERROR_BAD_FILE_FORMAT`).
    virtual ObjectType GetNextObjectType();
    /// Ends the use of the stream; closes the file of a named-file stream, the others have nothing to close.
    virtual void Close();
    /// 1 when the stream works on a `FILE*` of the caller, else 0.
    virtual int IsFile() const;
    /// Copies all bytes of a memory stream to `pDestination` and returns their number. Fails with 0:
    /// `KX_ERROR_INSUFFICIENT_ALLOCATION` when `un32Capacity` is too small, `KX_ERROR_INVALID_OPERATION` for
    /// streams that are not memory.
    virtual unsigned int GetData(unsigned char* pDestination, unsigned int un32Capacity);
    /// Current position of a file, or number of bytes in a memory stream.
    virtual unsigned int GetCurrentPos();
    virtual ~KxSerializer();

    /// Writes `un32Size` bytes from `pData`, or reads them into it. `pszFieldName` names the field for
    /// diagnostics and is not stored. Throws: `KX_ERROR_FILE_READ` (too few bytes left),
    /// `KX_ERROR_FILE_WRITE`, `KX_ERROR_SERIALIZER_NOT_OPEN`.
    void SerializeBytes(void* pData, unsigned int un32Size, const char* pszFieldName = "");
    /// 1 when open for reading, else 0.
    int IsReading() const;
    /// 1 when open for writing, else 0.
    int IsWriting() const;
    /// 1 when reading and nothing is left; a memory writer is always at its end.
    int IsEOS() const;
    /// Saves the current position on the stack of positions.
    void PushStreamPos();
    /// Drops the last saved position.
    void PopAndForgetStreamPos();
    /// Returns to the last saved position and drops it. Throws `KX_ERROR_FILE_ACCESS` when it cannot. What
    /// was written after that position is dropped from memory; in a file it stays until it is written over.
    void PopAndApplyStreamPos();

    /// Opens a file for reading. The stream belongs to the caller, who deletes it; null on failure
    /// (`KX_ERROR_FILE_OPEN`).
    static KxSerializer* CreateFileReader(const std::string& name);
    static KxSerializer* CreateFileReader(const std::basic_string<unsigned short>& name);
    /// Opens a file for writing. The stream belongs to the caller, who deletes it; null on failure
    /// (`KX_ERROR_FILE_OPEN`, `KX_ERROR_OVERWRITE_NOT_ALLOWED`).
    static KxSerializer* CreateFileWriter(const std::string& name, FileWriterMode eMode = Overwrite);
    static KxSerializer* CreateFileWriter(const std::basic_string<unsigned short>& name,
                                          FileWriterMode eMode = Overwrite);
    /// A stream that writes into memory; it belongs to the caller. `GetData` takes the bytes out.
    static KxSerializer* CreateMemoryWriter();
    /// A stream that reads a copy of `un32Size` bytes; it belongs to the caller.
    static KxSerializer* CreateMemoryReader(const unsigned char* pData, unsigned int un32Size);

private:
    friend class KxOpaqueSerializer;
    explicit KxSerializer(KxOpaqueSerializer* pImplementation) : m_pImplementation(pImplementation) {}

    KxOpaqueSerializer* m_pImplementation;
};

/// Base of the streams. Derive from it to archive into something else: implement the transfer, the two state
/// queries and the stack of positions.
class KX_API KxOpaqueSerializer : public KxSerializer {
public:
    KxOpaqueSerializer() : KxSerializer(this) {}

    ObjectType GetNextObjectType() override;
    /// Does nothing.
    void Close() override;

    virtual void SerializeBytes(void* pData, unsigned int un32Size, const char* pszFieldName) = 0;
    virtual int IsWriting() const = 0;
    virtual int IsEOS() const = 0;
    /// The negation of `IsWriting`.
    virtual int IsReading() const;
    virtual void PushStreamPos() = 0;
    virtual void PopAndForgetStreamPos() = 0;
    virtual void PopAndApplyStreamPos() = 0;
};

/// A stream in a file that it opens by name and owns. The factories of `KxSerializer` make it.
class KX_API KxFileSerializer : public KxOpaqueSerializer {
public:
    /// Closes the file. What was written may be incomplete when the slot then holds `KX_ERROR_FILE_CLOSE`.
    ~KxFileSerializer() override;

    /// Opens another file for reading, closing the one that is open. Throws `KX_ERROR_FILE_OPEN`, and the
    /// stream is closed.
    void OpenReader(const std::string& name);
    void OpenReader(const std::basic_string<unsigned short>& name);
    /// Opens another file for writing, closing the one that is open. Throws `KX_ERROR_FILE_OPEN`, and the
    /// stream is closed; or `KX_ERROR_OVERWRITE_NOT_ALLOWED`, and the stream is as it was.
    void OpenWriter(const std::string& name, FileWriterMode eMode = Overwrite);
    void OpenWriter(const std::basic_string<unsigned short>& name, FileWriterMode eMode = Overwrite);
    /// Closes the file. `KX_ERROR_FILE_CLOSE` is left when not all that was written could be stored.
    void Close() override;
    unsigned int GetCurrentPos() override;
    void SerializeBytes(void* pData, unsigned int un32Size, const char* pszFieldName) override;
    int IsWriting() const override;
    int IsEOS() const override;
    int IsReading() const override;
    void PushStreamPos() override;
    void PopAndForgetStreamPos() override;
    void PopAndApplyStreamPos() override;

private:
    friend class KxSerializer;
    friend struct Zelkor::Kalvo::StreamContents;
    KxFileSerializer();

    template <class Name>
    void Read(const Name& name);
    template <class Name>
    void Write(const Name& name, FileWriterMode eMode);
    template <class Operation>
    static KxSerializer* Create(const Operation& open);

    std::FILE* File() const;

    std::unique_ptr<Zelkor::Platform::File> m_pFile;
    std::int64_t m_n64FileSize = 0;  // -1 when the file has none, as a pipe
    int m_bWriting = 0;
    std::vector<std::int64_t> m_Positions;
};

/// A stream in an open `FILE*` of the caller, who keeps and closes it. It starts at the file's position.
class KX_API KxFilePointerSerializer : public KxOpaqueSerializer {
public:
    /// @param bWriting  not 0 to write, 0 to read
    KxFilePointerSerializer(std::FILE* pFile, int bWriting);

    int IsFile() const override;
    unsigned int GetCurrentPos() override;
    void SerializeBytes(void* pData, unsigned int un32Size, const char* pszFieldName) override;
    int IsWriting() const override;
    int IsEOS() const override;
    void PushStreamPos() override;
    void PopAndForgetStreamPos() override;
    void PopAndApplyStreamPos() override;

private:
    friend struct Zelkor::Kalvo::StreamContents;

    std::FILE* m_pFile;
    int m_bWriting;
    std::vector<std::int64_t> m_Positions;
    std::int64_t m_n64FileSize;  // -1 when the file has none, as a pipe
};

/// A stream in memory. It starts as a reader of nothing.
/// @code
/// KxImage<KxBW8> image(64, 48);
/// KxMemSerializer writer, reader;
/// writer.OpenWriter();
/// image.Save(&writer);
/// reader.OpenReader(writer.GetBuffer());
/// image.Load(&reader);
/// @endcode
class KX_API KxMemSerializer : public KxOpaqueSerializer {
public:
    /// Starts reading a copy of `data`; earlier bytes are dropped.
    void OpenReader(const std::vector<unsigned char>& data);
    /// Starts writing; earlier bytes are dropped.
    void OpenWriter();
    /// The bytes written so far, or being read.
    const std::vector<unsigned char>& GetBuffer() const { return m_Buffer; }

    unsigned int GetData(unsigned char* pDestination, unsigned int un32Capacity) override;
    unsigned int GetCurrentPos() override;
    void SerializeBytes(void* pData, unsigned int un32Size, const char* pszFieldName) override;
    int IsWriting() const override;
    int IsEOS() const override;
    void PushStreamPos() override;
    void PopAndForgetStreamPos() override;
    void PopAndApplyStreamPos() override;

private:
    friend class KxSerializer;
    friend struct Zelkor::Kalvo::StreamContents;

    std::vector<unsigned char> m_Buffer;
    std::size_t m_ReadPosition = 0;
    bool m_bWriting = false;
    std::vector<std::size_t> m_Positions;
};
