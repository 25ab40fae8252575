#include "cad/db/kinds/OutlineSupport.h"

#include "cad/db/ExplodeSupport.h"
#include "cad/db/GroupCodes.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace veltarn::db::outline_support {
namespace {

constexpr double kTurn = 2 * std::numbers::pi;
// Beyond any spline a drawing holds; it bounds the work of one evaluation.
constexpr int kMaxDegree = 32;
// A piece is halved at most this often: 2^16 pieces a span is finer than any tolerance needs.
constexpr int kMaxHalvings = 16;
// Knot spans are first cut in this many pieces, so that a span's S-bend is not taken for straight.
constexpr int kFirstCuts = 4;

double distanceToSegment(const Point3& p, const Point3& a, const Point3& b) {
    const Point3 ab = b - a;
    const double squared = dot(ab, ab);
    double t = squared > 0 ? dot(p - a, ab) / squared : 0;
    t = std::clamp(t, 0.0, 1.0);
    return length(p - (a + ab * t));
}

bool finite(const Point3& p) { return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z); }

// A control point in homogeneous form: weighted coordinates and the weight.
struct Weighted {
    double x = 0, y = 0, z = 0, w = 1;
};

class SplineSampler {
public:
    SplineSampler(const Spline& spline, double tolerance) : s_(spline), tolerance_(tolerance) {
        const std::size_t n = spline.controls.size();
        weighted_.reserve(n);
        for (std::size_t i = 0; i < n; ++i) {
            const double w = spline.weights.empty() ? 1.0 : spline.weights[i];
            const Point3& p = spline.controls[i];
            weighted_.push_back({p.x * w, p.y * w, p.z * w, w});
        }
        scratch_.resize(static_cast<std::size_t>(spline.degree) + 1);
    }

    std::vector<Point3> sample() {
        const auto p = static_cast<std::size_t>(s_.degree);
        const std::size_t n = s_.controls.size();
        const std::vector<double>& u = s_.knots;
        out_.push_back(at(p, u[p]));
        for (std::size_t k = p; k < n; ++k) {
            if (!(u[k + 1] > u[k])) continue;
            const int cuts = s_.degree == 1 ? 1 : kFirstCuts;
            for (int c = 0; c < cuts; ++c) {
                const double a = u[k] + (u[k + 1] - u[k]) * c / cuts;
                const double b = c + 1 == cuts ? u[k + 1] : u[k] + (u[k + 1] - u[k]) * (c + 1) / cuts;
                refine(k, a, out_.back(), b, at(k, b), 0);
            }
        }
        return std::move(out_);
    }

private:
    // de Boor's algorithm in homogeneous coordinates, in knot span k (u[k] <= t <= u[k + 1]).
    Point3 at(std::size_t k, double t) {
        const auto p = static_cast<std::size_t>(s_.degree);
        const std::vector<double>& u = s_.knots;
        for (std::size_t j = 0; j <= p; ++j)
            scratch_[j] = weighted_[j + k - p];
        for (std::size_t r = 1; r <= p; ++r) {
            for (std::size_t j = p; j >= r; --j) {
                const double left = u[j + k - p], span = u[j + 1 + k - r] - left;
                const double alpha = span > 0 ? (t - left) / span : 0;
                Weighted& d = scratch_[j];
                const Weighted& e = scratch_[j - 1];
                d = {(1 - alpha) * e.x + alpha * d.x, (1 - alpha) * e.y + alpha * d.y, (1 - alpha) * e.z + alpha * d.z,
                     (1 - alpha) * e.w + alpha * d.w};
            }
        }
        const Weighted& d = scratch_[p];
        return {d.x / d.w, d.y / d.w, d.z / d.w};
    }

    // Appends the points after `pa` up to `pb`, halving the piece while the curve strays.
    void refine(std::size_t k, double a, Point3 pa, double b, Point3 pb, int halvings) {
        if (halvings < kMaxHalvings && static_cast<int>(out_.size()) < kMaxSplinePieces) {
            const double m = (a + b) / 2;
            const Point3 pm = at(k, m);
            const bool strays = distanceToSegment(pm, pa, pb) > tolerance_ ||
                                distanceToSegment(at(k, (a + m) / 2), pa, pb) > tolerance_ ||
                                distanceToSegment(at(k, (m + b) / 2), pa, pb) > tolerance_;
            if (strays) {
                refine(k, a, pa, m, pm, halvings + 1);
                refine(k, m, out_.back(), b, pb, halvings + 1);
                return;
            }
        }
        out_.push_back(pb);
    }

    const Spline& s_;
    double tolerance_;
    std::vector<Weighted> weighted_;
    std::vector<Weighted> scratch_;
    std::vector<Point3> out_;
};

bool validSpline(const Spline& s) {
    const std::size_t n = s.controls.size();
    if (s.degree < 1 || s.degree > kMaxDegree || n < static_cast<std::size_t>(s.degree) + 1) return false;
    if (s.knots.size() != n + static_cast<std::size_t>(s.degree) + 1) return false;
    if (!s.weights.empty() && s.weights.size() != n) return false;
    for (std::size_t i = 0; i < s.knots.size(); ++i)
        if (!std::isfinite(s.knots[i]) || (i > 0 && s.knots[i] < s.knots[i - 1])) return false;
    for (double w : s.weights)
        if (!(w > 0) || !std::isfinite(w)) return false;
    for (const Point3& p : s.controls)
        if (!finite(p)) return false;
    const auto p = static_cast<std::size_t>(s.degree);
    return s.knots[n] > s.knots[p];  // a domain that is not empty
}

}  // namespace

int arcPieces(double radius, double sweep, double tolerance) {
    sweep = std::abs(sweep);
    if (!std::isfinite(sweep) || sweep == 0) return 1;
    const double coarsest = kTurn / kMinTurnPieces, finest = kTurn / kMaxTurnPieces;
    radius = std::abs(radius);
    // A chord of a step up to half a turn strays at most a radius from its arc.
    double step = tolerance < radius ? 2 * std::acos(1 - tolerance / radius) : coarsest;
    if (!(step >= finest)) step = finest;  // NaN too
    step = std::min(step, coarsest);
    const double pieces = std::ceil(sweep / step - 1e-9);
    return static_cast<int>(std::clamp(pieces, 1.0, static_cast<double>(kMaxTurnPieces)));
}

void appendArc(std::vector<Point3>& out, const Point3& center, double radius, double start, double sweep,
               double tolerance) {
    const int pieces = arcPieces(radius, sweep, tolerance);
    for (int i = 0; i <= pieces; ++i) {
        const double a = start + sweep * i / pieces;
        out.push_back({center.x + radius * std::cos(a), center.y + radius * std::sin(a), center.z});
    }
}

void appendEllipse(std::vector<Point3>& out, const Point3& center, const Point3& major, const Point3& minor,
                   double start, double sweep, double tolerance) {
    const int pieces = arcPieces(std::max(length(major), length(minor)), sweep, tolerance);
    for (int i = 0; i <= pieces; ++i) {
        const double t = start + sweep * i / pieces;
        out.push_back(center + major * std::cos(t) + minor * std::sin(t));
    }
}

std::vector<Point3> bulgedPath(const std::vector<Vertex>& vertices, bool closed, double tolerance) {
    std::vector<Point3> out;
    const std::size_t n = vertices.size();
    if (n == 0) return out;
    out.push_back(vertices[0].point);
    const std::size_t segments = closed ? n : n - 1;
    std::vector<Point3> arc;
    for (std::size_t i = 0; i < segments; ++i) {
        const Vertex& a = vertices[i];
        const Point3& b = vertices[(i + 1) % n].point;
        const double dx = b.x - a.point.x, dy = b.y - a.point.y, chord = std::hypot(dx, dy);
        const double included = 4 * std::atan(a.bulge), half = included / 2;
        if (a.bulge == 0 || !std::isfinite(a.bulge) || !(chord > 0) || std::sin(half) == 0) {
            out.push_back(b);
            continue;
        }
        // The centre lies off the chord's midpoint along its left normal, by half the chord over
        // tan(half the included angle): from the angle rather than the bulge, which a huge bulge
        // would overflow when squared.
        const double offset = chord / 2 * std::cos(half) / std::sin(half);
        const double radius = chord / (2 * std::abs(std::sin(half)));
        const Point3 center{(a.point.x + b.x) / 2 - dy / chord * offset, (a.point.y + b.y) / 2 + dx / chord * offset,
                            a.point.z};
        arc.clear();
        appendArc(arc, center, radius, std::atan2(a.point.y - center.y, a.point.x - center.x), included, tolerance);
        out.insert(out.end(), arc.begin() + 1, arc.end() - 1);
        out.push_back(b);  // the vertex itself, not its rounded copy
    }
    return out;
}

std::optional<std::vector<Point3>> sampleSpline(const Spline& spline, double tolerance) {
    if (!validSpline(spline)) return std::nullopt;
    return SplineSampler(spline, tolerance).sample();
}

Point3 toWcs(const Point3& point, const Point3& normal) {
    if (explode_support::isDefaultNormal(normal)) return point;
    return Ocs(normal).toWcs(point);
}

void toWcs(std::vector<Point3>& points, const Point3& normal) {
    if (explode_support::isDefaultNormal(normal)) return;
    const Ocs ocs(normal);
    for (Point3& p : points)
        p = ocs.toWcs(p);
}

Outline pointOutline(const Point3& point) { return {Outline::Shape::Point, {{point}}}; }

Outline lineOutline(std::vector<Point3> points) { return {Outline::Shape::Line, {std::move(points)}}; }

Outline pathOutline(std::vector<Point3> points, bool closed) {
    return {closed ? Outline::Shape::Polygon : Outline::Shape::Line, {std::move(points)}};
}

std::optional<Outline> pointAt(const TagList& tags, int code, bool ocs) {
    const std::size_t end = explode_support::ownEnd(tags);
    const auto point = tags.point(code, 1, end);
    if (!point) return std::nullopt;
    return pointOutline(ocs ? toWcs(*point, explode_support::normalIn(tags, 1, end)) : *point);
}

}  // namespace veltarn::db::outline_support
