#include "tqimage/korvelin.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <vector>

#include "automation_host.h"
#include "images.h"

namespace tqtest {
namespace {

/// Global memory with these bytes, released with the scope.
struct GlobalBytes {
    HGLOBAL handle;
    explicit GlobalBytes(const std::vector<std::uint8_t>& bytes) : handle(GlobalAlloc(GHND, bytes.size())) {
        std::copy(bytes.begin(), bytes.end(), static_cast<std::uint8_t*>(GlobalLock(handle)));
        GlobalUnlock(handle);
    }
    GlobalBytes(const GlobalBytes&) = delete;
    GlobalBytes& operator=(const GlobalBytes&) = delete;
    ~GlobalBytes() { GlobalFree(handle); }
    /// True when nobody holds a lock: the last one is then this test's.
    bool Free() const { return GlobalLock(handle) != nullptr && GlobalUnlock(handle) == 0; }
};

TEST(ConvertKorvelin, BytesBecomePelsAndTheFieldsTheHeader) {
    const GlobalBytes data({0, 1, 2, 253, 254, 255});
    const TqKorvelinRecord record{data.handle, 3, 2, 1000.5f, 999.5f, -7, 16777217, -5, 0.25f, 2.5f, 254.5f};
    Image image(5, 5);
    ASSERT_EQ(TqConvertKorvelinToImage(image.Address(), &record, -12), 0);
    const TqImageHeader expected{3,     2,    1000.5f, 999.5f, -7.0f, 16777216.0f, -5.0,
                                 0.25f, 2.5f, 254.5f,  -12.0f, 1,     1,           0};
    EXPECT_TRUE(SameHeader(image.Header(), expected));
    EXPECT_EQ(image.Values(), (std::vector<std::uint16_t>{0, 1, 2, 253, 254, 255}));
    EXPECT_TRUE(data.Free());
}

TEST(ConvertKorvelin, RefusesWhatTheMemoryDoesNotHold) {
    constexpr std::int32_t kHuge = std::numeric_limits<std::int32_t>::max();
    const GlobalBytes data(std::vector<std::uint8_t>(64));
    Image image(5, 5);
    TqKorvelinRecord record{};
    EXPECT_EQ(TqConvertKorvelinToImage(nullptr, &record, 1), -2);
    EXPECT_EQ(TqConvertKorvelinToImage(image.Address(), nullptr, 1), -2);
    EXPECT_EQ(TqConvertKorvelinToImage(image.Address(), &record, 1), -2);
    record.Data = data.handle;
    const struct {
        std::int32_t cols, rows, status;
    } cases[] = {{0, 5, -3},   {-4, 0, -3},      {-4, 4, -4},       {4, -4, -4},
                 {-4, -4, -4}, {1000, 1000, -2}, {kHuge, kHuge, -2}};
    for (const auto& [cols, rows, status] : cases) {
        record.Cols = cols;
        record.Rows = rows;
        EXPECT_EQ(TqConvertKorvelinToImage(image.Address(), &record, 1), status) << cols << ' ' << rows;
        EXPECT_TRUE(data.Free());
    }
    EXPECT_EQ(image.Cols(), 5);
}

}  // namespace
}  // namespace tqtest
