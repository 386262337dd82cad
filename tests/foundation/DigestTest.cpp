// The digest entry point the machine identifier uses.

#include <gtest/gtest.h>

#include <zk64/foundation/detail/Digest.h>

#include <string>

TEST(Digest, OneDigitPerByte)
{
    EXPECT_STREQ(zk64::detail::ComputeByteDigest("wxyz", 4).GetString(), "1D3A");
    EXPECT_STREQ(zk64::detail::ComputeByteDigest("hello", 5).GetString(), "5AA6F");
    EXPECT_STREQ(zk64::detail::ComputeByteDigest("hello", 3).GetString(), "5EC") << "counted, not terminated";
    EXPECT_TRUE(zk64::detail::ComputeByteDigest("", 0).IsEmpty());
    std::string const zeros(3, '\0');
    EXPECT_STREQ(zk64::detail::ComputeByteDigest(zeros.data(), 3).GetString(), "FFF") << "zero bytes count";
}
