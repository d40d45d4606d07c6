#include <gtest/gtest.h>

#include "platform/RateLimit.h"

TEST(RateLimit, DueAtOnce_ThenOncePerInterval) {
    qint64 now = 1000;
    RateLimit limit(40, [&now] { return now; });
    EXPECT_TRUE(limit.due());
    EXPECT_FALSE(limit.due());
    now += 39;
    EXPECT_FALSE(limit.due());
    EXPECT_EQ(limit.remainingMs(), 1);
    now += 1;
    EXPECT_TRUE(limit.due());
    EXPECT_EQ(limit.remainingMs(), 40);
}

TEST(RateLimit, Mark_StartsTheIntervalAnew) {
    qint64 now = 0;
    RateLimit limit(40, [&now] { return now; });
    now = 100;
    limit.mark();
    now = 130;
    EXPECT_FALSE(limit.due());
    EXPECT_EQ(limit.remainingMs(), 10);
    now = 140;
    EXPECT_EQ(limit.remainingMs(), 0);
    EXPECT_TRUE(limit.due());
}
