#include "platform/core/Exceptions.h"

namespace vl {

Exception::Exception(QString message) : FMessage(std::move(message)), FUtf8(FMessage.toStdString()) {}

EAbort::EAbort() : Exception(QStringLiteral("Operation aborted")) {}

void Abort() {
    throw EAbort();
}

namespace msg {
QString ListIndexError(long long index) {
    return QStringLiteral("List index out of bounds (%1)").arg(index);
}
QString ListCapacityError(long long value) {
    return QStringLiteral("List capacity out of bounds (%1)").arg(value);
}
QString ListCountError(long long value) {
    return QStringLiteral("List count out of bounds (%1)").arg(value);
}
} // namespace msg

} // namespace vl
