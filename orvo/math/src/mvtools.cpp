#include <orvo/math/mvtools.h>

namespace {

// One set of comparisons for every type; with the int thresholds (0 and the
// largest int) they yield the fixed int answers documented in the header.
template <class T> bool near_zero(T v, T t) {
    return -t < v && v < t;
}
template <class T> bool near_pos_zero(T v, T t) {
    return T(0) <= v && v < t;
}
template <class T> bool near_neg_zero(T v, T t) {
    return -t < v && v <= T(0);
}
template <class T> bool near_pos_inf(T v, T big) {
    return v > big;
}
template <class T> bool near_neg_inf(T v, T big) {
    return v < -big;
}

} // namespace

double MVTools::getMinPosDouble() {
    return 1e-150;
}
double MVTools::getMaxPosDouble() {
    return 1e150;
}
double MVTools::getMaxExpDouble() {
    return 345.38776;
}
float MVTools::getMinPosFloat() {
    return 1e-18f;
}
float MVTools::getMaxPosFloat() {
    return 1e18f;
}
float MVTools::getMaxExpFloat() {
    return 41.4465f;
}
int MVTools::getMinPosInt() {
    return 0;
}
int MVTools::getMaxPosInt() {
    return 2147483647;
}

bool MVTools::isNearZero(double v) {
    return near_zero(v, getMinPosDouble());
}
bool MVTools::isNearZero(float v) {
    return near_zero(v, getMinPosFloat());
}
bool MVTools::isNearZero(int v) {
    return near_zero(v, getMinPosInt());
}

bool MVTools::isNearPosZero(double v) {
    return near_pos_zero(v, getMinPosDouble());
}
bool MVTools::isNearPosZero(float v) {
    return near_pos_zero(v, getMinPosFloat());
}
bool MVTools::isNearPosZero(int v) {
    return near_pos_zero(v, getMinPosInt());
}

bool MVTools::isNearNegZero(double v) {
    return near_neg_zero(v, getMinPosDouble());
}
bool MVTools::isNearNegZero(float v) {
    return near_neg_zero(v, getMinPosFloat());
}
bool MVTools::isNearNegZero(int v) {
    return near_neg_zero(v, getMinPosInt());
}

bool MVTools::isNearInf(double v) {
    return near_pos_inf(v, getMaxPosDouble()) || near_neg_inf(v, getMaxPosDouble());
}
bool MVTools::isNearInf(float v) {
    return near_pos_inf(v, getMaxPosFloat()) || near_neg_inf(v, getMaxPosFloat());
}
bool MVTools::isNearInf(int v) {
    return near_pos_inf(v, getMaxPosInt()) || near_neg_inf(v, getMaxPosInt());
}

bool MVTools::isNearPosInf(double v) {
    return near_pos_inf(v, getMaxPosDouble());
}
bool MVTools::isNearPosInf(float v) {
    return near_pos_inf(v, getMaxPosFloat());
}
bool MVTools::isNearPosInf(int v) {
    return near_pos_inf(v, getMaxPosInt());
}

bool MVTools::isNearNegInf(double v) {
    return near_neg_inf(v, getMaxPosDouble());
}
bool MVTools::isNearNegInf(float v) {
    return near_neg_inf(v, getMaxPosFloat());
}
bool MVTools::isNearNegInf(int v) {
    return near_neg_inf(v, getMaxPosInt());
}
