#include "core/portable_math.h"

// Declared here rather than through <quadmath.h>, which only GCC finds.
extern "C" {
__float128 sinq(__float128);
__float128 cosq(__float128);
__float128 tanq(__float128);
__float128 asinq(__float128);
__float128 acosq(__float128);
__float128 atanq(__float128);
__float128 powq(__float128, __float128);
__float128 logq(__float128);
__float128 expq(__float128);
}

namespace tq::portable {

double Sin(double radians) {
    return static_cast<double>(sinq(radians));
}
double Cos(double radians) {
    return static_cast<double>(cosq(radians));
}
double Tan(double radians) {
    return static_cast<double>(tanq(radians));
}
double Asin(double value) {
    return static_cast<double>(asinq(value));
}
double Acos(double value) {
    return static_cast<double>(acosq(value));
}
double Atan(double value) {
    return static_cast<double>(atanq(value));
}
double Pow(double base, double exponent) {
    return static_cast<double>(powq(base, exponent));
}
double Log(double value) {
    return static_cast<double>(logq(value));
}
double Exp(double value) {
    return static_cast<double>(expq(value));
}

}  // namespace tq::portable
