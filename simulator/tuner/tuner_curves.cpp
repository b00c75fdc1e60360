// Curves of strength over level, and of quality over carrier to noise.
//
// A satellite demodulator's figures depend on what it receives: each curve names the FEC type,
// modulation, symbol rate and code rate that it was taken with, and a carrier is judged by the
// nearest. Between the points a curve is straight, beyond its ends it is flat.
#include "simulator/tuner/tuner_curves.h"

#include <algorithm>
#include <cmath>

#include "platform/qlx_tuner.h"

namespace sim {

namespace {

struct Point {
    double input;
    double percent;
};

struct SatelliteCurve {
    uint32_t fecType;
    uint32_t modulation;
    uint32_t fecRate;
    uint32_t symbolRate;
    /** By rising input; ends with an input of `lastPoint`. */
    Point points[28];
};

constexpr double lastPoint = 1000;

constexpr uint32_t S = QLX_FEC_TYPE_DVB_S;
constexpr uint32_t S2 = QLX_FEC_TYPE_DVB_S2;
constexpr uint32_t Q = QLX_MODULATION_QPSK;
constexpr uint32_t P8 = QLX_MODULATION_8PSK;

// clang-format off
/** Strength over the level in dBm: flat while the gain control has range, then a steep knee. */
const SatelliteCurve strengthCurves[] = {
    {S, Q, QLX_FEC_RATE_3_4, 30000000,
     {{-95, 1}, {-90, 1}, {-80, 17}, {-79, 18}, {-78, 18}, {-76, 26}, {-74, 66}, {-72, 90},
      {-70, 91}, {-68, 92}, {-65, 97}, {-62, 99}, {-60, 99}, {-30, 99}, {lastPoint, 100}}},
    {S, Q, QLX_FEC_RATE_3_4, 3000000,
     {{-95, 1}, {-91, 2}, {-90, 2}, {-85, 2}, {-80, 17}, {-79, 17}, {-78, 18}, {-77, 26},
      {-75, 66}, {-72, 90}, {-70, 91}, {-65, 97}, {-64, 98}, {-60, 99}, {-30, 99},
      {lastPoint, 100}}},
    {S2, Q, QLX_FEC_RATE_3_4, 20000000,
     {{-95, 1}, {-86, 2}, {-84, 3}, {-82, 9}, {-80, 17}, {-78, 18}, {-76, 26}, {-75.5, 26},
      {-74, 66}, {-72, 90}, {-70, 91}, {-68, 92}, {-65, 97}, {-62, 99}, {-60, 99}, {-20, 99},
      {lastPoint, 100}}},
    {S2, Q, QLX_FEC_RATE_3_4, 5000000,
     {{-95, 1}, {-85, 2}, {-84, 3}, {-82, 9}, {-80, 17}, {-78, 18}, {-77, 26}, {-75, 26},
      {-73, 66}, {-72, 90}, {-70, 91}, {-68, 92}, {-65, 97}, {-64, 98}, {-60, 99}, {-30, 99},
      {lastPoint, 100}}},
    {S2, P8, QLX_FEC_RATE_3_4, 30000000,
     {{-79, 1}, {-78, 18}, {-77, 26}, {-76, 26}, {-75, 66}, {-73, 66}, {-72, 90}, {-71, 91},
      {-70, 97}, {-65, 99}, {-60, 99}, {-30, 99}, {lastPoint, 100}}},
    {S2, P8, QLX_FEC_RATE_3_4, 5000000,
     {{-95, 1}, {-86, 1}, {-84, 6}, {-82, 9}, {-80, 17}, {-79, 17}, {-78, 18}, {-76, 26},
      {-75, 26}, {-73, 66}, {-71, 90}, {-70, 91}, {-69, 91}, {-68, 92}, {-66, 96}, {-64, 98},
      {-60, 99}, {-30, 99}, {lastPoint, 100}}},
};

/** Quality over carrier to noise in dB. */
const SatelliteCurve qualityCurves[] = {
    {S, Q, QLX_FEC_RATE_2_3, 30000000,
     {{3, 0}, {3.5, 2}, {3.6, 6}, {3.7, 8}, {4, 9}, {4.5, 12}, {5, 29}, {5.8, 55}, {6, 55},
      {7, 71}, {8, 99}, {lastPoint, 100}}},
    {S, Q, QLX_FEC_RATE_3_4, 30000000,
     {{4, 0}, {4.4, 2}, {4.5, 4}, {4.6, 7}, {5, 10}, {5.5, 24}, {6, 34}, {6.8, 54}, {7, 65},
      {8, 84}, {9, 99}, {lastPoint, 100}}},
    {S, Q, QLX_FEC_RATE_5_6, 30000000,
     {{5, 0}, {5.4, 2}, {5.5, 4}, {5.6, 6}, {6, 8}, {6.5, 21}, {7, 24}, {7.8, 48}, {8, 55},
      {9, 94}, {10, 99}, {lastPoint, 100}}},
    {S2, Q, QLX_FEC_RATE_2_3, 20000000,
     {{2, 0}, {2.5, 1}, {3, 3}, {3.2, 5}, {3.6, 16}, {4, 17}, {4.5, 19}, {5, 20}, {6, 23},
      {7, 25}, {8, 26}, {9, 28}, {10, 29}, {15, 37}, {20, 44}, {25, 53}, {30, 59}, {35, 62},
      {40, 63}, {44.5, 99}, {lastPoint, 100}}},
    {S2, Q, QLX_FEC_RATE_3_4, 20000000,
     {{2, 0}, {3.5, 1}, {4, 3}, {4.1, 15}, {4.6, 16}, {5, 17}, {6, 20}, {7, 23}, {8, 25},
      {9, 27}, {10, 28}, {15, 36}, {20, 44}, {25, 52}, {30, 59}, {35, 64}, {40, 64},
      {44.5, 99}, {lastPoint, 100}}},
    {S2, Q, QLX_FEC_RATE_5_6, 20000000,
     {{4, 0}, {5, 1}, {5.1, 3}, {5.5, 21}, {5.7, 21}, {6, 23}, {7, 26}, {8, 29}, {9, 31},
      {10, 33}, {15, 41}, {20, 50}, {25, 58}, {30, 65}, {35, 70}, {39.5, 99},
      {lastPoint, 100}}},
    {S2, P8, QLX_FEC_RATE_2_3, 30000000,
     {{5, 0}, {6, 1}, {6.5, 2}, {6.7, 4}, {7.1, 24}, {8, 27}, {9, 30}, {10, 33}, {11, 35},
      {12, 37}, {15, 43}, {20, 53}, {25, 61}, {30, 68}, {35, 73}, {40, 80}, {44.5, 99},
      {lastPoint, 100}}},
    {S2, P8, QLX_FEC_RATE_3_4, 30000000,
     {{7, 0}, {7.8, 1}, {7.9, 26}, {8, 26}, {8.4, 30}, {9, 30}, {10, 34}, {11, 37}, {12, 39},
      {15, 46}, {20, 57}, {25, 67}, {30, 80}, {35, 82}, {39.5, 99}, {lastPoint, 100}}},
    {S2, P8, QLX_FEC_RATE_5_6, 30000000,
     {{8, 0}, {9, 1}, {9.2, 27}, {9.4, 28}, {9.5, 30}, {9.6, 30}, {9.9, 33}, {10, 34},
      {11, 37}, {12, 43}, {13, 46}, {15, 49}, {20, 62}, {25, 71}, {30, 84}, {35, 87},
      {39.5, 99}, {lastPoint, 100}}},
};

/** Quality of 64-QAM with code rate 2/3 over carrier to noise: terrestrial reception. */
const Point terrestrialQuality[] = {
    {8, 0}, {10, 1}, {12, 2}, {14, 4}, {15, 6}, {16, 12}, {16.2, 16}, {17, 32}, {18, 51},
    {19, 66}, {20, 82}, {21, 92}, {22, 97}, {22.5, 100}, {lastPoint, 100},
};

/** Strength without a satellite curve: one percent a dB. */
const Point plainStrength[] = {{-110, 0}, {-10, 100}, {lastPoint, 100}};

/** How much more carrier to noise a modulation and a code rate need than 64-QAM 2/3. */
struct Shift {
    uint32_t value;
    double decibels;
};
const Shift modulationShifts[] = {
    {QLX_MODULATION_QPSK, -12.5}, {QLX_MODULATION_8PSK, -9}, {QLX_MODULATION_16APSK, -7},
    {QLX_MODULATION_16QAM, -6.5}, {QLX_MODULATION_256QAM, 5}, {QLX_MODULATION_8VSB, -3},
};
const Shift fecRateShifts[] = {
    {QLX_FEC_RATE_1_2, -2.5}, {QLX_FEC_RATE_3_4, 1}, {QLX_FEC_RATE_5_6, 2}, {QLX_FEC_RATE_7_8, 3},
};
// clang-format on

/** A terrestrial receiver that cannot decode takes back its claim of strength. */
constexpr double undecodableStrengthLoss = 14;

double interpolate(const Point* points, double input) {
    if (input <= points[0].input)
        return points[0].percent;
    const Point* upper = points + 1;
    while (upper->input < input && upper->input != lastPoint)
        upper++;
    const Point* lower = upper - 1;
    if (upper->input == lastPoint)
        return lower->percent;
    double part = (input - lower->input) / (upper->input - lower->input);
    return lower->percent + part * (upper->percent - lower->percent);
}

bool satellite(const Transmitter& t) {
    return t.system == QLX_TRANSMISSION_SYSTEM_DVB_S || t.system == QLX_TRANSMISSION_SYSTEM_DVB_S2;
}

/** How unlike the carrier of a curve is, the weightiest difference first. */
double distance(const SatelliteCurve& curve, const Transmitter& t, bool byFecRate) {
    double unlike = 0;
    if (curve.fecType != t.fecType)
        unlike += 1000;
    if (curve.modulation != t.modulation)
        unlike += 100;
    if (byFecRate)
        return unlike + std::fabs(std::log2(curve.fecRate) - std::log2(std::max(1u, t.fecRate)));
    return unlike + std::fabs(std::log2(curve.symbolRate) - std::log2(std::max(1u, t.symbolRate)));
}

template <size_t count>
const Point* nearest(const SatelliteCurve (&curves)[count], const Transmitter& t, bool byFecRate) {
    const SatelliteCurve* best = &curves[0];
    for (const SatelliteCurve& curve : curves) {
        if (distance(curve, t, byFecRate) < distance(*best, t, byFecRate))
            best = &curve;
    }
    return best->points;
}

template <size_t count>
double shiftOf(const Shift (&shifts)[count], uint32_t value) {
    for (const Shift& shift : shifts) {
        if (shift.value == value)
            return shift.decibels;
    }
    return 0;
}

double channelWidthHz(const Transmitter& t) {
    if (t.symbolRate != 0)
        return t.symbolRate;
    switch (t.bandWidth) {
        case QLX_BANDWIDTH_6MHZ:
            return 6e6;
        case QLX_BANDWIDTH_7MHZ:
            return 7e6;
        default:
            return 8e6;
    }
}

}  // namespace

double carrierToNoise(const Transmitter& t) {
    // Thermal noise has -174 dBm a hertz; a satellite front end adds 2 dB, others 6 dB.
    double floorDbm = t.noiseFloorDbm;
    if (floorDbm == 0)
        floorDbm = -174 + 10 * std::log10(channelWidthHz(t)) + (satellite(t) ? 2 : 6);
    double noise = std::pow(10, (floorDbm - t.levelDbm) / 10);
    if (t.noiseDb > 0)
        noise += std::pow(10, -t.noiseDb / 10);
    return -10 * std::log10(noise);
}

int32_t signalQuality(const Transmitter& t) {
    double ratio = carrierToNoise(t);
    double percent;
    if (satellite(t)) {
        percent = interpolate(nearest(qualityCurves, t, true), ratio);
    } else {
        ratio -= shiftOf(modulationShifts, t.modulation) + shiftOf(fecRateShifts, t.fecRate);
        percent = interpolate(terrestrialQuality, ratio);
    }
    return static_cast<int32_t>(std::lround(percent));
}

uint32_t signalStrength(const Transmitter& t) {
    double level = t.levelDbm + t.strengthOffset;
    double percent;
    if (satellite(t)) {
        percent = interpolate(nearest(strengthCurves, t, false), level);
    } else {
        percent = interpolate(plainStrength, level);
        if (signalQuality(t) == 0)
            percent -= undecodableStrengthLoss;
    }
    return static_cast<uint32_t>(std::lround(std::min(100.0, std::max(0.0, percent))));
}

bool carrierHolds(const Transmitter& t) {
    // Carrier and timing are held far below the ratio at which data come through free of errors.
    return t.levelDbm > -100 && carrierToNoise(t) > 0;
}

}  // namespace sim
