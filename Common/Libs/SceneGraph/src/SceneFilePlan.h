#pragma once

#include "SceneFileLog.h"

#include <OpenSG/OSGFieldContainer.h>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace osg {

/// A field of a container that refers to others, as the writer sees it.
struct SceneFileLink {
    FieldContainerPtr target;
    UInt16 binding = 0;
    bool isOwning = false;
};

/// The containers that a field refers to, in the order in which they are written: null handles included,
/// internal attachments left out. Empty for a field of plain values.
std::vector<SceneFileLink> linksOf(const FieldContainer& container, const FieldDescription& description);

/// True for fields whose values are containers.
bool isLinkField(const Field& field);

/// Decides before anything is written which containers a file holds and which of them need a DEF name.
///
/// A container is written where somebody owns it: as a child, core or attachment or in an owning field. One
/// that others only refer to is written at the first place that does, unless it is part of a tree that the
/// file does not hold; then there is nothing to refer to.
class SceneFilePlan {
  public:
    SceneFilePlan(const std::vector<FieldContainerPtr>& tops, SceneFileLog& log);

    /// What stands at a place that refers to a container.
    enum class Form { Null, Use, Definition };

    /// To be asked in the order of writing, once for each place: the first owning place gets the definition.
    Form formOf(const FieldContainerPtr& owner, const FieldDescription& field, const SceneFileLink& link);
    /// Takes note that a container of the top level is being written.
    void writeTop(const FieldContainerPtr& container) { _written.insert(container.getFieldContainerId()); }

    /// Empty when nobody else refers to the container.
    const std::string& nameOf(const FieldContainerPtr& container) const;

  private:
    /// A place that refers to a container without owning it.
    struct Reference {
        FieldContainerPtr target;
        FieldContainerPtr owner;
        const FieldDescription* field;
    };

    void collectOwned(const FieldContainerPtr& top);
    void collectReferred(SceneFileLog& log);
    bool isPartOfAnotherTree(const FieldContainerPtr& container) const;
    void meet(const FieldContainerPtr& container, std::vector<FieldContainerPtr>& waiting);
    void name(const FieldContainerPtr& container);
    std::string chooseName(const FieldContainerPtr& container);

    /// Who writes a container that nobody owns: owner id and field id.
    using Place = std::pair<UInt32, UInt32>;

    std::unordered_map<UInt32, std::string> _names; ///< of every container in the file; empty: none needed
    std::unordered_set<std::string> _usedNames;
    std::unordered_map<UInt32, Place> _homes;
    std::unordered_set<UInt32> _written;
    std::unordered_set<UInt32> _ancestors; ///< of the tops: larger trees that the file is a part of
    std::vector<Reference> _references;
    UInt32 _lastNumber = 0;
};

} // namespace osg
