#pragma once

class kaAnimationCurve2D;
class kaAnimationField;
class kaAnimationObject;
class kaAnimationSequence;
class kaAnimationStreak;
class kaAnimationStrip;
class kaAnimationUnit;
class kaAnimationXmlOutput;
class kaControlPoint2D;

/// Describes fields, objects and the whole registry as elements of an animation document. Reads only.
///
/// A null argument gives the bare element. A coordinate that is not finite is written as "nan", "inf" or
/// "-inf", which a reader does not take for a number: it comes back as 0.
class kaAnimationXmlWriter {
  public:
    explicit kaAnimationXmlWriter(kaAnimationXmlOutput& output) : _output(output) {}

    void field(const kaAnimationField* field);
    void point(const kaControlPoint2D* point);
    /// A curve whose field is not registered gives the bare element, which a reader skips.
    void curve(const kaAnimationCurve2D* curve);
    void block(const kaAnimationUnit* unit);
    void track(const kaAnimationStreak* streak);
    void clip(const kaAnimationStrip* strip);
    void sequence(const kaAnimationSequence* sequence);

    /// The root with everything that is registered. Cost: O(n log n).
    void pool();

  private:
    void identity(const kaAnimationObject& object);
    void flags(const kaAnimationObject& object);
    void place(const char* tag, const kaControlPoint2D& point);
    void reference(const char* tag, const kaAnimationObject& object);
    void blocks();
    void clips(bool nested);

    kaAnimationXmlOutput& _output;
};
