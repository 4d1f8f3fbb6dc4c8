#pragma once

#include "kaAnimationTypes.h"

class kaAnimationCurve2D;
class kaAnimationField;
class kaAnimationObject;
class kaAnimationSequence;
class kaAnimationStreak;
class kaAnimationStrip;
class kaAnimationUnit;
class kaControlPoint2D;
struct kaAnimationXmlElement;

/// Makes fields and objects of a document's elements and, in a second pass, connects them.
///
/// A reader gives null when the element's "typeID" is not its own. A missing, empty or unfit attribute leaves
/// the default in place. The new item takes the element's "id" where no object and no field has it, else a
/// fresh one, while references inside the document go on to mean the item that had the id before.
class kaAnimationXmlBuilder {
  public:
    /// Is told that the id of a document gave way to a fresh one; may be null.
    using IDTaken = void (*)(kaUID from, kaUID to);

    explicit kaAnimationXmlBuilder(IDTaken idTaken) : _idTaken(idTaken) {}

    /// Makes what the element's "typeID" asks for; nothing without one or for a type that does not exist.
    void create(const kaAnimationXmlElement& element);

    kaAnimationField* field(const kaAnimationXmlElement& element);
    kaControlPoint2D* point(const kaAnimationXmlElement& element);
    kaAnimationCurve2D* curve(const kaAnimationXmlElement& element);
    kaAnimationUnit* block(const kaAnimationXmlElement& element);
    kaAnimationStreak* track(const kaAnimationXmlElement& element);
    kaAnimationStrip* clip(const kaAnimationXmlElement& element);
    kaAnimationSequence* sequence(const kaAnimationXmlElement& element);

    /// Connects the registered object that the element's "id" names with the registered objects that its
    /// children name.
    ///
    /// Children go to the object's `addObject`. One that it holds already is not added again, and one that
    /// stands in another container leaves that first, so that parent and child always name each other. The
    /// keys of a curve go to `setPoints`, each once; a key that another curve lists stays listed there too,
    /// and belongs to the curve that took it last.
    void connect(const kaAnimationXmlElement& element);

  private:
    kaUID freeID(kaUID wanted) const;
    template <class Container>
    Container* withFlags(Container* container, const kaAnimationXmlElement& element);
    void connectCurve(kaAnimationCurve2D& curve, const kaAnimationXmlElement& element);
    static void adopt(kaAnimationObject& container, kaAnimationObject& child);

    IDTaken _idTaken;
};
