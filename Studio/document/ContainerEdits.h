#pragma once

#include "Document.h"

#include <kaAnimationManager.h>

/// Edits of blocks, tracks, clips and sequences, and of flags of any object: each one step of the history.
/// What cannot be done is refused with nothing changed.
namespace ka::studio {

/// A switch of an object.
enum class ObjectFlag { Active, Repeating, MotionBlur, CustomRange };

/// The blocks that move a node.
std::vector<kaUID> blocksOfNode(unsigned int node);

bool rename(Document& document, kaUID object, const std::string& name);
bool setFlag(Document& document, kaUID object, ObjectFlag flag, bool on);
bool isFlagged(const kaAnimationObject& object, ObjectFlag flag);
bool setCustomRange(Document& document, kaUID object, float begin, float end);
bool setCurveColor(Document& document, kaUID curve, const osg::Color3f& color);

/// Whether `object`, were it to span these frames on `track`, would overlap nobody else there.
bool hasRoom(kaUID track, kaUID object, float begin, float end);

/// Moves what is laid out on a track by frames, to another track where one is given.
/// @return false where it would overlap, and where the track lies below the object.
bool moveObject(Document& document, kaUID object, float frames, kaUID track = 0);
bool stretchBegin(Document& document, kaUID object, float begin); ///< Its keys go along.
bool stretchEnd(Document& document, kaUID object, float end);     ///< Its keys go along.
bool trimBegin(Document& document, kaUID object, float begin);    ///< Of blocks and sequences; keys stay.
bool trimEnd(Document& document, kaUID object, float end);        ///< Of blocks and sequences; keys stay.
bool flip(Document& document, kaUID object);                      ///< Mirrors it in time.
/// A copy behind it on its track, or by itself where it is on none. @return the copy's id; 0 when refused.
kaUID duplicate(Document& document, kaUID object);
bool remove(Document& document, kaUID object);

kaUID addClip(Document& document, const std::string& name);
kaUID addTrack(Document& document, kaUID clip);
/// A named event on a track. @return its id; 0 where the track has no room.
kaUID addSequence(Document& document, kaUID track, const std::string& name, float begin, float end);
/// Puts an object that stands by itself, or a copy of one that does not, on a track at a frame.
/// @return the id of what stands there; 0 when refused.
kaUID placeOnTrack(Document& document, kaUID object, kaUID track, float begin);

/// Has the end or begin of one object start or stop another.
bool connectObjects(Document& document, kaUID source, kaAnimationManager::AnimationTrigger trigger,
                    kaUID target, kaAnimationManager::AnimationAction action);

} // namespace ka::studio
