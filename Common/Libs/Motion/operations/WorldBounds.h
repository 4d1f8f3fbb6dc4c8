#pragma once

#include "operations/WorldPath.h"

#include <functional>
#include <string>
#include <vector>

namespace ka::motion {

/// Looks for bounds of single curves with which no node of a scene moves further than a distance in the
/// world.
///
/// A turn of a node moves what is below it by the length of the lever, and what the nodes above a node do
/// adds up: bounds begin with that estimate, are measured, and are then widened or narrowed node by node
/// until they hold with little to spare.
class WorldBounds {
  public:
    using Keys = std::vector<PlainKey>;
    /// Thins the keys of these curves within these bounds (of all curves). @return false to give up.
    using Reduce =
        std::function<bool(const std::vector<std::size_t>& curves, const std::vector<double>& bounds)>;
    /// What has become of a curve.
    using Result = std::function<const Keys&(std::size_t curve)>;

    struct Worst {
        double distance = 0.0;
        double frame = 0.0;
        std::string node;
    };

    /// @param root  of the scene. @param curves, sources  with their keys. @param widest  bound of each curve
    /// that is never exceeded. @param distance  in the world.
    WorldBounds(const osg::NodePtr& root, const CurveList& curves, std::vector<Keys> sources,
                std::vector<double> widest, double distance);

    /// @return false when given up. What `reduce` made last are the keys of `bounds()`.
    bool find(const Reduce& reduce, const Result& result);

    const std::vector<double>& bounds() const { return _bounds; }
    const Worst& worst() const { return _worst; }
    double step() const { return _path.step(); }

  private:
    void estimate();
    double measure(const Result& result);
    std::vector<double> strainBelow() const;
    void adapt(double part);

    Skeleton _skeleton;
    std::vector<Keys> _sources;
    std::vector<double> _widest, _bounds;
    double _distance;
    WorldPath _path;
    std::vector<WorldPath::Distance> _measured;
    Worst _worst;
};

} // namespace ka::motion
