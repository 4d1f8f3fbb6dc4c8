#include "operations/Butterworth.h"

#include <algorithm>
#include <cmath>

namespace ka::motion {

namespace {

struct Coefficients {
    double b0, b1, b2, a1, a2;

    explicit Coefficients(double cutOff) {
        // Two runs take the root of a half each where one of them has its own cut-off at this part more.
        const double both = std::pow(std::sqrt(2.0) - 1.0, 0.25);
        // The bilinear transform bends frequencies; the tangent makes up for it where it matters.
        const double w = std::tan(M_PI * cutOff) / both;
        const double k = 1.0 / (1.0 + std::sqrt(2.0) * w + w * w);
        b0 = w * w * k;
        b1 = 2 * b0;
        b2 = b0;
        a1 = 2 * (w * w - 1.0) * k;
        a2 = (1.0 - std::sqrt(2.0) * w + w * w) * k;
    }

    /// Begins as if the first sample had always been there.
    void run(std::vector<double>& samples) const {
        double x1 = samples.front(), x2 = x1, y1 = x1, y2 = x1;
        for (double& sample : samples) {
            const double y = b0 * sample + b1 * x1 + b2 * x2 - a1 * y1 - a2 * y2;
            x2 = x1;
            x1 = sample;
            y2 = y1;
            y1 = sample = y;
        }
    }
};

} // namespace

std::vector<double> lowPassed(const std::vector<double>& samples, double cutOff) {
    const std::size_t count = samples.size();
    if (count < 3)
        return samples;
    // Long enough for what the filter remembers to have died away.
    const std::size_t margin = std::min(count - 1, static_cast<std::size_t>(std::ceil(3.0 / cutOff)));
    std::vector<double> line;
    line.reserve(count + 2 * margin);
    for (std::size_t i = margin; i > 0; --i)
        line.push_back(2 * samples.front() - samples[i]);
    line.insert(line.end(), samples.begin(), samples.end());
    for (std::size_t i = 1; i <= margin; ++i)
        line.push_back(2 * samples.back() - samples[count - 1 - i]);
    const Coefficients filter(cutOff);
    filter.run(line);
    std::reverse(line.begin(), line.end());
    filter.run(line);
    std::reverse(line.begin(), line.end());
    std::vector<double> result(line.begin() + static_cast<std::ptrdiff_t>(margin),
                               line.begin() + static_cast<std::ptrdiff_t>(margin + count));
    result.front() = samples.front();
    result.back() = samples.back();
    return result;
}

} // namespace ka::motion
