#include "platform/core/Streams.h"

#include "platform/core/Exceptions.h"

#include <QFile>

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>

namespace vl {

TStream::~TStream() = default;

std::int64_t TStream::Position() {
    return Seek(0, TSeekOrigin::soCurrent);
}

void TStream::SetPosition(std::int64_t Value) {
    if (Value < 0) return;
    Seek(Value, TSeekOrigin::soBeginning);
}

std::int64_t TStream::Size() {
    const std::int64_t pos = Seek(0, TSeekOrigin::soCurrent);
    const std::int64_t size = Seek(0, TSeekOrigin::soEnd);
    Seek(pos, TSeekOrigin::soBeginning);
    return size;
}

void TStream::SetSize(std::int64_t) {}

std::int64_t TStream::Remaining() {
    return std::max<std::int64_t>(0, Size() - Position());
}

void TStream::ReadBuffer(void* Buffer, std::int64_t Count) {
    auto* p = static_cast<std::uint8_t*>(Buffer);
    while (Count > 0) {
        const auto chunk = static_cast<std::int32_t>(std::min<std::int64_t>(Count, 0x40000000));
        const std::int32_t got = Read(p, chunk);
        if (got != chunk) throw EReadError(QString::fromLatin1(msg::ReadError));
        p += got;
        Count -= got;
    }
}

void TStream::WriteBuffer(const void* Buffer, std::int64_t Count) {
    const auto* p = static_cast<const std::uint8_t*>(Buffer);
    while (Count > 0) {
        const auto chunk = static_cast<std::int32_t>(std::min<std::int64_t>(Count, 0x40000000));
        const std::int32_t put = Write(p, chunk);
        if (put != chunk) throw EWriteError(QString::fromLatin1(msg::WriteError));
        p += put;
        Count -= put;
    }
}

std::int64_t TStream::CopyFrom(TStream& Source, std::int64_t Count) {
    // 0 (or a negative count, which would otherwise size the buffer from a wrapped value) copies the
    // whole source from its start.
    if (Count <= 0) {
        Source.SetPosition(0);
        Count = Source.Size();
    }
    const std::int64_t total = Count;
    std::vector<std::uint8_t> buffer(static_cast<std::size_t>(std::min<std::int64_t>(Count, 0xF000)));
    while (Count > 0) {
        const auto n = std::min<std::int64_t>(Count, static_cast<std::int64_t>(buffer.size()));
        Source.ReadBuffer(buffer.data(), n);
        WriteBuffer(buffer.data(), n);
        Count -= n;
    }
    return total;
}

std::uint64_t TStream::ReadLE(int bytes) {
    std::uint8_t b[8];
    ReadBuffer(b, bytes);
    std::uint64_t v = 0;
    for (int i = bytes - 1; i >= 0; --i) v = (v << 8) | b[i];
    return v;
}

void TStream::WriteLE(std::uint64_t v, int bytes) {
    std::uint8_t b[8];
    for (int i = 0; i < bytes; ++i) {
        b[i] = static_cast<std::uint8_t>(v & 0xFF);
        v >>= 8;
    }
    WriteBuffer(b, bytes);
}

std::int8_t TStream::ReadInt8() {
    return static_cast<std::int8_t>(ReadLE(1));
}
std::uint8_t TStream::ReadUInt8() {
    return static_cast<std::uint8_t>(ReadLE(1));
}
std::int16_t TStream::ReadInt16() {
    return static_cast<std::int16_t>(ReadLE(2));
}
std::uint16_t TStream::ReadUInt16() {
    return static_cast<std::uint16_t>(ReadLE(2));
}
std::int32_t TStream::ReadInt32() {
    return static_cast<std::int32_t>(ReadLE(4));
}
std::uint32_t TStream::ReadUInt32() {
    return static_cast<std::uint32_t>(ReadLE(4));
}
std::int64_t TStream::ReadInt64() {
    return static_cast<std::int64_t>(ReadLE(8));
}
std::uint64_t TStream::ReadUInt64() {
    return ReadLE(8);
}
float TStream::ReadSingle() {
    return std::bit_cast<float>(static_cast<std::uint32_t>(ReadLE(4)));
}
double TStream::ReadDouble() {
    return std::bit_cast<double>(ReadLE(8));
}
bool TStream::ReadBool() {
    return ReadLE(1) != 0;
}

void TStream::WriteInt8(std::int8_t v) {
    WriteLE(static_cast<std::uint8_t>(v), 1);
}
void TStream::WriteUInt8(std::uint8_t v) {
    WriteLE(v, 1);
}
void TStream::WriteInt16(std::int16_t v) {
    WriteLE(static_cast<std::uint16_t>(v), 2);
}
void TStream::WriteUInt16(std::uint16_t v) {
    WriteLE(v, 2);
}
void TStream::WriteInt32(std::int32_t v) {
    WriteLE(static_cast<std::uint32_t>(v), 4);
}
void TStream::WriteUInt32(std::uint32_t v) {
    WriteLE(v, 4);
}
void TStream::WriteInt64(std::int64_t v) {
    WriteLE(static_cast<std::uint64_t>(v), 8);
}
void TStream::WriteUInt64(std::uint64_t v) {
    WriteLE(v, 8);
}
void TStream::WriteSingle(float v) {
    WriteLE(std::bit_cast<std::uint32_t>(v), 4);
}
void TStream::WriteDouble(double v) {
    WriteLE(std::bit_cast<std::uint64_t>(v), 8);
}
void TStream::WriteBool(bool v) {
    WriteLE(v ? 1 : 0, 1);
}

// --- TMemoryStream ---

TMemoryStream::TMemoryStream(const QByteArray& Bytes)
    : FData(reinterpret_cast<const std::uint8_t*>(Bytes.constData()),
            reinterpret_cast<const std::uint8_t*>(Bytes.constData()) + Bytes.size()) {}

std::int32_t TMemoryStream::Read(void* Buffer, std::int32_t Count) {
    if (FPosition < 0 || Count <= 0) return 0;
    const std::int64_t left = Size() - FPosition;
    if (left <= 0) return 0;
    const auto n = static_cast<std::int32_t>(std::min<std::int64_t>(left, Count));
    std::memcpy(Buffer, FData.data() + FPosition, static_cast<std::size_t>(n));
    FPosition += n;
    return n;
}

std::int32_t TMemoryStream::Write(const void* Buffer, std::int32_t Count) {
    if (FPosition < 0 || Count <= 0) return 0;
    const std::int64_t end = FPosition + Count;
    if (end > Size()) FData.resize(static_cast<std::size_t>(end));
    std::memcpy(FData.data() + FPosition, Buffer, static_cast<std::size_t>(Count));
    FPosition = end;
    return Count;
}

std::int64_t TMemoryStream::Seek(std::int64_t Offset, TSeekOrigin Origin) {
    switch (Origin) {
    case TSeekOrigin::soBeginning: FPosition = Offset; break;
    case TSeekOrigin::soCurrent: FPosition += Offset; break;
    case TSeekOrigin::soEnd: FPosition = Size() + Offset; break;
    }
    return FPosition;
}

void TMemoryStream::SetSize(std::int64_t NewSize) {
    if (NewSize < 0) NewSize = 0;
    FData.resize(static_cast<std::size_t>(NewSize));
    if (FPosition > NewSize) FPosition = NewSize;
}

void TMemoryStream::Clear() {
    FData.clear();
    FData.shrink_to_fit();
    FPosition = 0;
}

QByteArray TMemoryStream::Bytes() const {
    return QByteArray(reinterpret_cast<const char*>(FData.data()), static_cast<qsizetype>(FData.size()));
}

void TMemoryStream::LoadFromStream(TStream& Stream) {
    Stream.SetPosition(0);
    const std::int64_t count = Stream.Size();
    std::vector<std::uint8_t> data(static_cast<std::size_t>(count));
    if (count != 0) Stream.ReadBuffer(data.data(), count);
    FData = std::move(data);
    FPosition = 0;
}

void TMemoryStream::SaveToStream(TStream& Stream) {
    if (!FData.empty()) Stream.WriteBuffer(FData.data(), Size());
}

void TMemoryStream::LoadFromFile(const QString& FileName) {
    TFileStream file(FileName, fmOpenRead);
    LoadFromStream(file);
}

void TMemoryStream::SaveToFile(const QString& FileName) {
    TFileStream file(FileName, fmCreate);
    SaveToStream(file);
}

// --- TFileStream ---

TFileStream::TFileStream(const QString& FileName, std::uint16_t Mode)
    : FFileName(FileName), FFile(std::make_unique<QFile>(FileName)) {
    // The create mode may carry share bits in its low byte, as the framework's modes do.
    if ((Mode & fmCreate) == fmCreate) {
        if (!FFile->open(QIODevice::ReadWrite | QIODevice::Truncate))
            throw EFCreateError(
                QStringLiteral("Cannot create file \"%1\". %2").arg(FileName, FFile->errorString()));
        return;
    }
    QIODevice::OpenMode open;
    switch (Mode & 0x3) {
    case fmOpenWrite: open = QIODevice::WriteOnly | QIODevice::ExistingOnly; break;
    case fmOpenReadWrite: open = QIODevice::ReadWrite | QIODevice::ExistingOnly; break;
    default: open = QIODevice::ReadOnly; break;
    }
    if (!FFile->open(open))
        throw EFOpenError(QStringLiteral("Cannot open file \"%1\". %2").arg(FileName, FFile->errorString()));
}

TFileStream::~TFileStream() = default;

std::int32_t TFileStream::Read(void* Buffer, std::int32_t Count) {
    if (Count <= 0) return 0;
    const qint64 n = FFile->read(static_cast<char*>(Buffer), Count);
    return n < 0 ? 0 : static_cast<std::int32_t>(n);
}

std::int32_t TFileStream::Write(const void* Buffer, std::int32_t Count) {
    if (Count <= 0) return 0;
    const qint64 n = FFile->write(static_cast<const char*>(Buffer), Count);
    return n < 0 ? 0 : static_cast<std::int32_t>(n);
}

std::int64_t TFileStream::Seek(std::int64_t Offset, TSeekOrigin Origin) {
    std::int64_t target = Offset;
    if (Origin == TSeekOrigin::soCurrent)
        target += FFile->pos();
    else if (Origin == TSeekOrigin::soEnd)
        target += FFile->size();
    if (target >= 0) FFile->seek(target);
    return FFile->pos();
}

std::int64_t TFileStream::Size() {
    return FFile->size();
}

void TFileStream::SetSize(std::int64_t NewSize) {
    if (NewSize < 0) return;
    if (!FFile->resize(NewSize)) throw EWriteError(QString::fromLatin1(msg::WriteError));
    if (FFile->pos() > NewSize) FFile->seek(NewSize);
}

} // namespace vl
