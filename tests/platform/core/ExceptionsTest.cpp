#include "platform/core/Exceptions.h"

#include <gtest/gtest.h>

#include <cstring>
#include <type_traits>

using namespace vl;

TEST(Exceptions, MessageIsKeptAndOfferedAsUtf8) {
    const Exception e(QStringLiteral("Print error: Größe"));
    EXPECT_EQ(e.Message(), QStringLiteral("Print error: Größe"));
    EXPECT_STREQ(e.what(), "Print error: Gr\xC3\xB6\xC3\x9F"
                           "e");
}

TEST(Exceptions, AbortRaisesTheSilentAbort) {
    EXPECT_THROW(Abort(), EAbort);
    try {
        Abort();
    } catch (const Exception& e) {
        EXPECT_NE(dynamic_cast<const EAbort*>(&e), nullptr);
    }
}

TEST(Exceptions, FamiliesDeriveFromException) {
    static_assert(std::is_base_of_v<std::exception, Exception>);
    static_assert(std::is_base_of_v<Exception, EAbort>);
    static_assert(std::is_base_of_v<Exception, EListError>);
    static_assert(std::is_base_of_v<EStreamError, EReadError>);
    static_assert(std::is_base_of_v<EStreamError, EWriteError>);
    static_assert(std::is_base_of_v<EStreamError, EFOpenError>);
    static_assert(std::is_base_of_v<EStreamError, EFCreateError>);
    static_assert(std::is_base_of_v<Exception, EConvertError>);
    static_assert(std::is_base_of_v<Exception, EComponentError>);
    static_assert(std::is_base_of_v<Exception, EDivByZero>);
    static_assert(std::is_base_of_v<Exception, EZeroDivide>);
    static_assert(std::is_base_of_v<Exception, EInvalidOp>);
    // A stream error is caught by a handler of the whole family.
    EXPECT_THROW(throw EReadError(QString::fromLatin1(msg::ReadError)), EStreamError);
}

TEST(Exceptions, ListMessagesCarryTheValue) {
    EXPECT_EQ(msg::ListIndexError(-1), QStringLiteral("List index out of bounds (-1)"));
    EXPECT_EQ(msg::ListCapacityError(3), QStringLiteral("List capacity out of bounds (3)"));
    EXPECT_EQ(msg::ListCountError(2147483648LL), QStringLiteral("List count out of bounds (2147483648)"));
}
