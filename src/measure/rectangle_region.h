#pragma once

#include "core/image_view.h"
#include "core/rectangle.h"
#include "measure/region_shapes.h"
#include "measure/span_consumers.h"

namespace tq {

/// A validated image and the region of it that a host's rectangle means.
struct Region {
    ConstImageView view;
    Rect rect{0, 0, -1, -1};

    Region(const TqImage* image, const Rect& asked) : view(LocateImage(image)) {
        if (view) rect = ClampRegion(asked, view.cols, view.rows);
    }
    explicit operator bool() const noexcept { return static_cast<bool>(view); }

    template <class Consumer>
    void Feed(Consumer& consumer) const {
        VisitRectangle(rect, OnPelsOf(view, consumer));
    }
};

}  // namespace tq
