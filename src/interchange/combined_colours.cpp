#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "core/guard.h"
#include "core/image_view.h"
#include "interchange/bitmap_object.h"
#include "interchange/combined_gamma.h"
#include "interchange/tone_curve.h"
#include "kernels/colour_bytes.h"
#include "kernels/pel_arithmetic.h"
#include "tqimage/colour_bitmap.h"

namespace tq {
namespace {

constexpr std::int32_t kInvalidImage = -1;
constexpr std::int32_t kNoBitmap = -2;
constexpr std::int32_t kNoDib = -11;

constexpr std::uint8_t kWhite = 255;

/// The images present, of one size, and what turns their pels into light.
struct Sources {
    std::array<ConstImageView, kChannels> images;
    Triple gains{};  ///< 0 for an image that is absent
    std::int32_t cols = 0;
    std::int32_t rows = 0;
    double fullScale = 0.0;

    bool Add(Channel channel, const TqImage* image, float gain) noexcept {
        if (image == nullptr) return true;
        const ConstImageView view = LocateImage(image);
        if (!view || (cols != 0 && (view.cols != cols || view.rows != rows))) return false;
        const auto scale = static_cast<double>(view.header->MaxPelValue);
        fullScale = cols == 0 ? scale : std::max(fullScale, scale);
        images[channel] = view;
        gains[channel] = gain;
        cols = view.cols;
        rows = view.rows;
        return true;
    }
    std::size_t Cols() const noexcept { return static_cast<std::size_t>(cols); }
    std::size_t Count() const noexcept { return Cols() * static_cast<std::size_t>(rows); }
};

struct Style {
    bool normalize;
    bool whiteForBlack;
    double gamma;
};

/// Makes one row after the other.
class Rows {
  public:
    Rows(const Sources& sources, const Style& style)
        : sources_(sources), style_(style), dark_(sources.Cols()), left_(sources.Cols()), way_(ChooseWay()) {
        for (auto& channel : bytes_)
            channel.resize(sources.Cols());
        if (way_ == Way::kLevels) {
            for (std::size_t i = 0; i < kChannels; ++i)
                tables_[i] = MakeToneTable(1.0, sources.fullScale, kLargestPel, sources.gains[i]);
        }
        if (way_ == Way::kGamma) gamma_.emplace(style.gamma, sources.fullScale, sources.gains);
    }

    void Fill(std::int32_t row, std::uint8_t* out) {
        for (std::size_t i = 0; i < kChannels; ++i)
            pels_[i] = sources_.images[i] ? sources_.images[i].Row(row) : dark_.data();
        if (way_ == Way::kPixels) {
            for (std::size_t col = 0; col < sources_.Cols(); ++col)
                FillPixel(col, out + kChannels * col);
        } else {
            FillTogether(out);
        }
        if (style_.whiteForBlack) WhitenBlack(out);
    }

  private:
    /// How bytes come about: as the host's numbers allow, the last way being the one for all of them.
    enum class Way {
        kNormalized,
        kLevels,  ///< a byte depends on its own pel alone
        kGamma,
        kPixels,
    };

    /// Tables of powers for all levels take longer than fewer pixels one by one.
    static constexpr std::size_t kWorthTables = 16'000;

    Way ChooseWay() const noexcept {
        const auto isFinite = [](double gain) { return std::isfinite(gain); };
        // Without a light above 0 a normalized pixel is black, with and without a scale.
        if (style_.normalize)
            return std::ranges::all_of(sources_.gains, isFinite) ? Way::kNormalized : Way::kPixels;
        if (!(sources_.fullScale > 0.0)) return Way::kPixels;
        if (style_.gamma == 1.0) return Way::kLevels;
        const bool worth = sources_.Count() >= kWorthTables;
        return worth && CombinedGamma::Holds(style_.gamma, sources_.fullScale, sources_.gains) ? Way::kGamma
                                                                                               : Way::kPixels;
    }

    Triple Light(std::size_t col) const noexcept {
        Triple light;
        for (std::size_t i = 0; i < kChannels; ++i)
            light[i] = pels_[i][col] * sources_.gains[i];
        return light;
    }

    void FillTogether(std::uint8_t* out) {
        const ByteRows bytes{bytes_[kBlue].data(), bytes_[kGreen].data(), bytes_[kRed].data()};
        const kernels::ChannelRuns runs{pels_[kBlue], pels_[kGreen], pels_[kRed], sources_.Cols()};
        if (way_ == Way::kNormalized) kernels::NormalizeToBytes(runs, sources_.gains.data(), bytes.data());
        if (way_ == Way::kGamma) gamma_->Encode(runs, bytes, left_.data());
        if (way_ == Way::kLevels) {
            for (std::size_t i = 0; i < kChannels; ++i)
                kernels::LookUp(pels_[i], tables_[i].data(), bytes[i], runs.count);
        }
        kernels::InterleaveBytes(bytes.data(), out, runs.count);
        if (way_ != Way::kGamma) return;
        for (auto left = left_.begin(); (left = std::find(left, left_.end(), 1)) != left_.end(); ++left) {
            const auto col = static_cast<std::size_t>(left - left_.begin());
            FillPixel(col, out + kChannels * col);
        }
    }

    void FillPixel(std::size_t col, std::uint8_t* pixel) const {
        Triple light = Light(col);
        const double largest = Largest(light);
        if (style_.normalize && largest > 0.0) {
            std::ranges::transform(light, pixel,
                                   [=](double value) { return ToneByte(value * 255.0 / largest); });
        } else if (sources_.fullScale > 0.0) {
            for (double& value : light)
                value /= sources_.fullScale;
            EncodeWithGamma(light, style_.gamma, pixel);
        }
    }

    /// Dark pixels stand out in white. Gains may be negative, so that the brightest channel decides.
    void WhitenBlack(std::uint8_t* pixel) const noexcept {
        std::array<const Pel*, kChannels> adding = pels_;
        for (std::size_t i = 0; i < kChannels; ++i)
            if (!(sources_.gains[i] > 0.0)) adding[i] = dark_.data();
        for (std::size_t col = 0; col < sources_.Cols(); ++col, pixel += kChannels) {
            const bool lit = (adding[kBlue][col] | adding[kGreen][col] | adding[kRed][col]) != 0;
            if (!lit && Largest(Light(col)) == 0.0) std::fill(pixel, pixel + kChannels, kWhite);
        }
    }

    const Sources& sources_;
    const Style& style_;
    std::vector<Pel> dark_;           ///< the row of an image that is absent
    std::vector<std::uint8_t> left_;  ///< 1 for pixels to be made one by one
    Way way_;
    std::array<const Pel*, kChannels> pels_{};
    std::array<std::vector<std::uint8_t>, kChannels> bytes_;
    std::array<std::vector<std::uint8_t>, kChannels> tables_;
    std::optional<CombinedGamma> gamma_;
};

OwnedBitmap Combine(const Sources& sources, const Style& style) {
    // Without normalisation and a scale nothing is written: black.
    OwnedBitmap bitmap = OwnedBitmap::OfColours(
        sources.cols, sources.rows, sources.fullScale > 0.0 ? NewPixels::kUnwritten : NewPixels::kZero);
    Rows rows(sources, style);
    for (std::int32_t row = 0; row < sources.rows; ++row)
        rows.Fill(row, bitmap.Row(row));
    return bitmap;
}

/// The whole contract but for what becomes of the bitmap: `use(OwnedBitmap)` gives the status.
template <class Use>
std::int32_t WithCombined(const std::array<const TqImage*, 3>& images, const std::array<float, 3>& gains,
                          const Style& style, Use&& use) noexcept {
    Sources sources;
    const bool sound = sources.Add(kRed, images[0], gains[0]) && sources.Add(kGreen, images[1], gains[1]) &&
                       sources.Add(kBlue, images[2], gains[2]);
    if (!sound || sources.cols == 0) return kInvalidImage;
    return Guarded(kNoBitmap, [&] { return use(Combine(sources, style)); });
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqCombineImagesRGB(TqLeadBitmap* bitmap, const TqImage* red, const TqImage* green,
                                        const TqImage* blue, float redGain, float greenGain, float blueGain,
                                        std::int32_t normalize, std::int32_t whiteForBlack, double gamma) {
    const Style style{normalize != 0, whiteForBlack != 0, gamma == 0.0 ? 1.0 : gamma};
    return WithCombined({red, green, blue}, {redGain, greenGain, blueGain}, style, [&](OwnedBitmap combined) {
        if (bitmap == nullptr) return kNoBitmap;
        *bitmap = combined.Release();
        return 0;
    });
}

std::int32_t TQ_CALL tqCombineImagesRGBtoDIB(void** dib, const TqImage* red, const TqImage* green,
                                             const TqImage* blue, float redGain, float greenGain,
                                             float blueGain, std::int32_t normalize,
                                             std::int32_t whiteForBlack, double gamma) {
    const Style style{normalize != 0, whiteForBlack != 0, gamma == 0.0 ? 1.0 : gamma};
    return WithCombined({red, green, blue}, {redGain, greenGain, blueGain}, style,
                        [&](const OwnedBitmap& combined) {
                            if (dib == nullptr) return kNoDib;
                            *dib = BitmapToDib(combined.Get());
                            return *dib != nullptr ? 0 : kNoDib;
                        });
}
