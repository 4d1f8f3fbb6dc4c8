#pragma once

/// @file
/// Small types that the object family, the registry and the controller share.

/// Unique id of an object, a field or a connection: one id space for all three; 0 means "none".
using kaUID = unsigned long long;

/// The values that `getTypeID()` returns. What follows from a class stands in `kaObjectClass`.
enum kaAnimationTypeID : unsigned int {
    KA_TYPE_OBJECT = 0,
    KA_TYPE_POINT = 1,
    KA_TYPE_CURVE = 2,
    KA_TYPE_UNIT = 3,
    KA_TYPE_STREAK = 4,
    KA_TYPE_STRIP = 5,
    KA_TYPE_SEQUENCE = 6
};

/// Number of type ids.
constexpr unsigned int KA_TYPE_COUNT = 7;

/// Largest magnitude of an extent: begin and minimum start here, end and maximum at its negative, so that an
/// extent that was never computed is empty (begin greater than end). The float has the bits 0x65A96816.
constexpr float KA_EMPTY_EXTENT = 1e23F;

/// Tolerance of the range tests on begin and end, in frames: a shorter span is refused.
constexpr double KA_RANGE_TOLERANCE = 0.000001;

/// Whether a begin asked for leaves a span before `end`.
constexpr bool beginsBefore(float begin, float end) {
    return static_cast<double>(begin) < static_cast<double>(end) - KA_RANGE_TOLERANCE;
}

/// Whether an end asked for leaves a span after `begin`.
constexpr bool endsAfter(float end, float begin) {
    return static_cast<double>(end) > static_cast<double>(begin) + KA_RANGE_TOLERANCE;
}

/// Levels of containment that `addObject` accepts below one root, keys included: a thousand clips inside each
/// other. (A key in a curve in a block on a track in a clip is five, a clip nested in a track adds two.)
/// Objects are walked without recursion, so it is not the stack that asks for an end: every child that is
/// added tells all of its ancestors, and a document may ask for any number of them.
constexpr unsigned int KA_MAX_DEPTH = 2048;

/// Values of a connection, brought into `kaAnimationManager` by inheritance so that the object family can
/// name them without the whole registry.
struct kaConnectionTypes {
    /// The event of a connection's source.
    enum AnimationTrigger : int {
        TriggerBegin = 0, ///< the frame has reached the object's begin while the object was not playing
        TriggerEnd = 1    ///< the frame has passed the object's end while the object was playing
    };

    /// What a connection does to its target; any other value does nothing.
    enum AnimationAction : int {
        ActionPlay = 0, ///< an active target is queued to start
        ActionStop = 1  ///< the target leaves the running objects
    };
};

/// Time and value bounds of an object.
struct kaExtent {
    float begin = KA_EMPTY_EXTENT;    ///< frames
    float end = -KA_EMPTY_EXTENT;     ///< frames
    float maximum = -KA_EMPTY_EXTENT; ///< in the unit of the animated field
    float minimum = KA_EMPTY_EXTENT;  ///< in the unit of the animated field

    /// Widens in time to hold a span; ties and NaN keep what is there.
    void includeSpan(float otherBegin, float otherEnd) {
        begin = otherBegin < begin ? otherBegin : begin;
        end = otherEnd > end ? otherEnd : end;
    }

    /// Widens to hold `other`; ties and NaN keep what is there.
    void include(const kaExtent& other) {
        includeSpan(other.begin, other.end);
        maximum = other.maximum > maximum ? other.maximum : maximum;
        minimum = other.minimum < minimum ? other.minimum : minimum;
    }
};
