#pragma once

/// Elementary functions whose results are the same bits on every build. The C libraries of the platforms
/// differ in the last place, and a limit on a production line must not depend on where the library runs; so
/// these are computed with 113 bits and rounded once, which gives the correctly rounded double. They cost
/// about a microsecond: call them for results, not for pels.
namespace tq::portable {

double Sin(double radians);
double Cos(double radians);
double Tan(double radians);
double Asin(double value);
double Acos(double value);
double Atan(double value);
double Pow(double base, double exponent);
double Log(double value);
double Exp(double value);

}  // namespace tq::portable
