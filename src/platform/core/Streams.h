// Byte streams of the component framework: the abstract `TStream`, the growable `TMemoryStream` and
// the file-backed `TFileStream`.
//
// Every field that the library writes to a stream goes through the little-endian helpers below, one
// field at a time; structures are never copied to or from a stream as a block. `ReadBuffer` and the
// typed readers raise `EReadError` when fewer bytes follow than asked for, so a reader never works
// on a partial field.
#pragma once

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <memory>
#include <vector>

class QFile;

namespace vl {

enum class TSeekOrigin : std::uint8_t { soBeginning, soCurrent, soEnd };

class TStream {
public:
    virtual ~TStream();

    // Reads up to `Count` bytes into `Buffer` and answers how many were read (0 at the end).
    virtual std::int32_t Read(void* Buffer, std::int32_t Count) = 0;
    // Writes `Count` bytes and answers how many were written.
    virtual std::int32_t Write(const void* Buffer, std::int32_t Count) = 0;
    // Moves the position and answers the new one.
    virtual std::int64_t Seek(std::int64_t Offset, TSeekOrigin Origin) = 0;

    std::int64_t Position();
    // A negative position is ignored without error: the reader of old files relies on it.
    void SetPosition(std::int64_t Value);
    virtual std::int64_t Size();
    virtual void SetSize(std::int64_t NewSize);

    // Bytes from the position to the end.
    std::int64_t Remaining();

    // Read or write exactly `Count` bytes; a short transfer raises `EReadError` or `EWriteError`.
    void ReadBuffer(void* Buffer, std::int64_t Count);
    void WriteBuffer(const void* Buffer, std::int64_t Count);

    // Copies `Count` bytes from `Source` at its position; `Count` 0 (or below) copies the whole source
    // from its start. Answers the bytes copied.
    std::int64_t CopyFrom(TStream& Source, std::int64_t Count);

    // Little-endian fields.
    std::int8_t ReadInt8();
    std::uint8_t ReadUInt8();
    std::int16_t ReadInt16();
    std::uint16_t ReadUInt16();
    std::int32_t ReadInt32();
    std::uint32_t ReadUInt32();
    std::int64_t ReadInt64();
    std::uint64_t ReadUInt64();
    float ReadSingle();
    double ReadDouble();
    bool ReadBool(); // one byte, any non-zero value is true

    void WriteInt8(std::int8_t v);
    void WriteUInt8(std::uint8_t v);
    void WriteInt16(std::int16_t v);
    void WriteUInt16(std::uint16_t v);
    void WriteInt32(std::int32_t v);
    void WriteUInt32(std::uint32_t v);
    void WriteInt64(std::int64_t v);
    void WriteUInt64(std::uint64_t v);
    void WriteSingle(float v);
    void WriteDouble(double v);
    void WriteBool(bool v);

private:
    std::uint64_t ReadLE(int bytes);
    void WriteLE(std::uint64_t v, int bytes);
};

// A stream over a block of memory that grows as it is written.
class TMemoryStream : public TStream {
public:
    TMemoryStream() = default;
    explicit TMemoryStream(const QByteArray& Bytes); // a copy of the bytes, position 0

    std::int32_t Read(void* Buffer, std::int32_t Count) override;
    std::int32_t Write(const void* Buffer, std::int32_t Count) override;
    std::int64_t Seek(std::int64_t Offset, TSeekOrigin Origin) override;
    std::int64_t Size() override { return static_cast<std::int64_t>(FData.size()); }
    void SetSize(std::int64_t NewSize) override;

    void Clear();
    std::uint8_t* Memory() { return FData.data(); }
    const std::uint8_t* Memory() const { return FData.data(); }
    QByteArray Bytes() const;

    void LoadFromStream(TStream& Stream); // the whole of `Stream` from its start; position 0
    void SaveToStream(TStream& Stream);   // the whole content
    void LoadFromFile(const QString& FileName);
    void SaveToFile(const QString& FileName);

private:
    std::vector<std::uint8_t> FData;
    std::int64_t FPosition = 0;
};

// File open modes; `fmCreate` creates or truncates.
enum TFileMode : std::uint16_t {
    fmOpenRead = 0x0000,
    fmOpenWrite = 0x0001,
    fmOpenReadWrite = 0x0002,
    fmCreate = 0xFF00,
};

class TFileStream : public TStream {
public:
    // Raises `EFOpenError` when the file can't be opened, `EFCreateError` when it can't be created.
    TFileStream(const QString& FileName, std::uint16_t Mode);
    ~TFileStream() override;

    std::int32_t Read(void* Buffer, std::int32_t Count) override;
    std::int32_t Write(const void* Buffer, std::int32_t Count) override;
    std::int64_t Seek(std::int64_t Offset, TSeekOrigin Origin) override;
    std::int64_t Size() override;
    void SetSize(std::int64_t NewSize) override;

    const QString& FileName() const { return FFileName; }

private:
    QString FFileName;
    std::unique_ptr<QFile> FFile;
};

} // namespace vl
