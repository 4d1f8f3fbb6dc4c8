#pragma once

#include "kaAnimationExport.h"
#include "kaAnimationTypes.h"
#include "kaDocumentParser.h"

#include <OpenSG/OSGAction.h>
#include <OpenSG/OSGAnimationAttachment.h>
#include <OpenSG/OSGAnimationBlock.h>
#include <OpenSG/OSGAnimationClip.h>
#include <OpenSG/OSGAnimationControlPoint.h>
#include <OpenSG/OSGAnimationCurve.h>
#include <OpenSG/OSGAnimationTrack.h>
#include <OpenSG/OSGNode.h>
#include <QDomDocument>
#include <QObject>
#include <QString>
#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

class QWidget;
class kaAnimationCurve2D;
class kaAnimationField;
class kaAnimationObject;
class kaAnimationSequence;
class kaAnimationStreak;
class kaAnimationStrip;
class kaAnimationUnit;
class kaAnimationXmlOutput;
class kaConnections;
class kaControlPoint2D;
class kaSceneSync;
template <class Object>
class kaWeakList;
struct kaImportReport;

/// The one registry and factory of the module: makes, finds, duplicates and frees every object and field by
/// id, binds them to scene nodes, copies and pastes, connects triggers, keeps the host's callbacks, saves,
/// loads and imports.
///
/// The registry owns every object and field that it made; they are freed only through the destroy operations,
/// a container together with its whole subtree. Refusals are null, false or an empty list; nothing throws.
/// Used on the host's user-interface thread only; creating the instance is the one thread-safe step.
class KA_ANIMATION_API kaAnimationManager : public QObject, public kaConnectionTypes {
    Q_OBJECT

  public:
    // Set-up.

    /// The instance, made on first use and destroyed at process exit. Objects still registered then are not
    /// freed.
    static kaAnimationManager* the();
    /// Whether there is an instance: false before the first `the()` and once process exit has destroyed it.
    static bool isAlive();
    ~kaAnimationManager() override;

    /// Called once by the host: seeds the id generator from the calendar time. The widget is not used.
    void init(QWidget* parent);
    /// Called by the host at shut-down: `clearCopyBuffer(true)`.
    void terminate();

    // Ids.

    /// Seeds the process-wide generator unless `seed` is 0, then returns its next number.
    static unsigned long long random(unsigned long long seed);
    /// A fresh id: never 0, never one that a registered object or field has.
    kaUID createUID();
    /// Whether neither an object nor a field has this id; 0 is unique.
    bool isIDUnique(kaUID id) const;
    /// Gives an object or field the id asked for, or a fresh one where that id is taken (its own included).
    /// Read the id back to learn which. Null does nothing.
    void setID(kaUID id, kaAnimationObject* object);
    /// @copydoc setID(kaUID, kaAnimationObject*)
    void setID(kaUID id, kaAnimationField* field);

    /// The object with the smallest id whose name is `name`; null for an empty name. Cost: a walk of the
    /// registry.
    kaAnimationObject* getObject(const std::string& name) const;
    /// Whether no registered object has that name; false for an empty one. Cost: a walk of the registry.
    bool isObjectNameUnique(const std::string& name) const;

    /// @name Lookup by id
    /// @{

    /// The registered object or field with that id; null when there is none, or when it is of another type.
    /// The registry keeps owning it. Cost: constant.
    kaAnimationObject* getObject(kaUID id) const;
    kaControlPoint2D* getPoint2D(kaUID id) const;
    kaAnimationCurve2D* getCurve2D(kaUID id) const;
    kaAnimationUnit* getUnit(kaUID id) const;
    kaAnimationStreak* getStreak(kaUID id) const;
    kaAnimationStrip* getStrip(kaUID id) const;
    kaAnimationSequence* getSequence(kaUID id) const;
    kaAnimationField* getField(kaUID id) const;
    /// @}
    std::map<kaUID, kaAnimationObject*> getObjects() const; ///< A copy: O(n log n).
    std::map<kaUID, kaAnimationField*> getFields() const;   ///< A copy: O(n).
    /// The registered objects of one type (`KA_TYPE_...`) in ascending id order; none for another number.
    /// Cost: O(n of that type); for keys O(n log n).
    std::vector<kaAnimationObject*> getObjects(unsigned int type) const;
    std::size_t getObjectCount() const; ///< Registered objects, keys included. Cost: constant.
    std::size_t getFieldCount() const;  ///< Cost: constant.

    /// @name Creation
    /// @{

    /// A new object or field with the defaults of its class, owned by the registry. Id 0 draws a fresh id. An
    /// id that is already registered keeps its entry: the new object is returned but not registered. Cost: a
    /// constant number of allocations.
    kaControlPoint2D* createPoint2D(kaUID id);
    kaControlPoint2D* createPoint2D(float x, float y, kaUID id);
    kaAnimationCurve2D* createCurve2D(kaUID id);
    /// A curve bound to `field`; with `attach` it is listed on the field's scene node.
    kaAnimationCurve2D* createCurve2D(kaAnimationField* field, const std::string& name, kaUID id,
                                      bool attach);
    /// A curve for the node's field of that attribute, named after the attribute; null when there is no such
    /// field.
    kaAnimationCurve2D* createCurve2D(const osg::NodePtr& node, const std::string& attribute);
    /// A curve with the given keys for an attribute as the interchange format names it ("TransformTX", "Fov",
    /// ...). Prints one line and gives null for an attribute that is unknown or that the node has no field
    /// for.
    kaAnimationCurve2D* createCurve2D(const osg::NodePtr& node, std::string attribute,
                                      const std::vector<kaControlPoint2D*>& points, kaUID id, bool attach);
    kaAnimationUnit* createUnit(kaUID id);
    kaAnimationUnit* createUnit(const std::string& name, kaUID id);
    /// A block around the given curves; with `attach` it is listed on the node that the curves decide.
    kaAnimationUnit* createUnit(const std::vector<kaAnimationCurve2D*>& curves, const std::string& name,
                                kaUID id, bool attach);
    kaAnimationStreak* createStreak(kaUID id);
    kaAnimationStreak* createStreak(const std::string& name, kaUID id);
    kaAnimationStrip* createStrip(kaUID id);
    kaAnimationStrip* createStrip(const std::string& name, kaUID id);
    kaAnimationSequence* createSequence(const std::string& name, kaUID id);
    kaAnimationField* createField(kaUID id);
    /// @}

    /// @name Duplication
    /// @{

    /// A registered copy with a fresh id, and copies of everything below it; null gives null. Cost: that of
    /// building the subtree anew.
    kaControlPoint2D* duplicatePoint2D(kaControlPoint2D* point);
    kaAnimationCurve2D* duplicateCurve2D(kaAnimationCurve2D* curve);
    /// With `attach` the copy is listed on the source's scene node.
    kaAnimationUnit* duplicateUnit(kaAnimationUnit* unit, bool attach);
    kaAnimationStreak* duplicateStreak(kaAnimationStreak* streak);
    kaAnimationStrip* duplicateStrip(kaAnimationStrip* strip);
    kaAnimationSequence* duplicateSequence(kaAnimationSequence* sequence);
    kaAnimationField* duplicateField(kaAnimationField* field);
    /// By type; a sequence gives null, so copied tracks lose their sequences.
    kaAnimationObject* duplicateObject(kaAnimationObject* object);
    /// @}

    // Keys on curves.

    /// Adds a key. @return false for a null curve, or for a key at x without `replace`.
    bool createCurvePoint(kaAnimationCurve2D* curve, float x, float y, bool snapX, bool snapY, bool replace);
    /// Adds a key on the curve itself. With `replace` a key at `frame` is removed first and stays removed
    /// when the insert constraints or the sampling then refuse.
    bool createCurvePoint(kaAnimationCurve2D* curve, float frame, bool replace);

    /// @name Destruction
    /// @{

    /// The object leaves its node's listing, its parent and the registry, then it is freed with its whole
    /// subtree; every pointer to any of it is void. Null does nothing. Cost: linear in the subtree.
    void destroyPoint2D(kaControlPoint2D* point);
    void destroyCurve2D(kaAnimationCurve2D* curve);
    void destroyUnit(kaAnimationUnit* unit);
    void destroyStreak(kaAnimationStreak* streak);
    void destroyStrip(kaAnimationStrip* strip);
    void destroySequence(kaAnimationSequence* sequence);
    void destroyObject(kaAnimationObject* object);
    void destroyField(kaAnimationField* field); ///< Curves that refer to it are not changed.
    /// Destroys in ascending id order while at least two objects are registered. One object stays where each
    /// is destroyed by itself; none does where the last goes as a part of another. With `all` false objects
    /// flagged internal stay too.
    void destroyAllObjects(bool all);
    void destroyAllFields(); ///< Every registered field, in ascending id order. Curves are not changed.
    /// @}

    // The scene. A node that is null or gone counts as a node without animation.

    /// Hands the scene over; null takes it back. The node stays the host's: a root that is destroyed later is
    /// noticed and counts as none.
    static void setSceneRootNode(const osg::NodePtr& root);
    static const osg::NodePtr& getSceneRootNode(); ///< Null while there is none.
    /// With a scene root, notes that an id gave way to another. The lists that nodes hold are left as they
    /// are: what a node lists after a load that met taken ids is what it listed before, and hosts rely on it.
    void changeAnimAttachmentIDs(kaUID from, kaUID to);
    /// The same for ids of fields.
    void changeAnimAttachmentFieldIDs(kaUID from, kaUID to);
    /// The visitor of the same; it changes nothing and goes on.
    static osg::Action::ResultE changeSceneAnimAttachmentIDs(const osg::NodePtr& node);
    /// The visitor of the same; it changes nothing and goes on.
    static osg::Action::ResultE changeSceneAnimAttachmentFieldIDs(const osg::NodePtr& node);
    /// The node's fields, discovered and attached when the node has no attachment yet. A node without core
    /// has none and gets none.
    std::vector<kaAnimationField*> getAnimationFields(const osg::NodePtr& node);
    /// Blocks that stand in no registered object and are not internal, in ascending id order.
    std::vector<kaAnimationUnit*> getSceneUnits() const;
    /// Those of `getSceneUnits` that are active.
    std::vector<kaAnimationUnit*> getActiveSceneUnits() const;
    /// Clips that stand in no registered object and are not internal, in ascending id order.
    std::vector<kaAnimationStrip*> getSceneStrips() const;
    /// The fields of one container that curves animate, once per curve, in ascending order of the curves'
    /// ids.
    std::vector<kaAnimationField*> getReferencedFields(unsigned int fcID) const;
    /// The curves that animate a registered field, in ascending id order.
    std::vector<kaAnimationCurve2D*> getReferencedCurves(kaUID fieldID) const;
    /// Switches every other block that is listed on the block's node off. The block's own flag stays.
    void setExclusiveActiveNodeUnit(kaAnimationUnit* unit);

    // Fields of scene nodes.

    /// The fields that the node lists; without any, those that are discovered (`kaFieldDiscovery`), which are
    /// then listed. Empty for a node without core.
    std::vector<kaAnimationField*> createAnimationFields(const osg::NodePtr& node);
    /// The first of the node's fields with that attribute, older spellings included ("rotateX"), discovering
    /// the fields first; null when there is none.
    kaAnimationField* getField(const osg::NodePtr& node, std::string attribute);
    /// Destroys the fields that the node lists and discovers them anew. Prints one line.
    std::vector<kaAnimationField*> recreateAnimationFields(const osg::NodePtr& node);
    /// `ensureUniqueAttributes` for every node of the scene.
    void checkUniqueAttributes();
    /// Leaves one field per attribute on the node's list, the first; the curves of the others move to it. The
    /// others stay registered.
    static osg::Action::ResultE ensureUniqueAttributes(const osg::NodePtr& node);
    /// Moves the curves of one registered field to another, whose default colour they take.
    void changeFieldReferences(kaAnimationField* from, kaAnimationField* to);
    /// `completeAnimationFieldNode` for every node of the scene.
    void completeAnimationFieldNodes();
    /// Points what the node lists at the node: its fields at the core, or at the material of a material group
    /// that has one, and its blocks at the node.
    static osg::Action::ResultE completeAnimationFieldNode(const osg::NodePtr& node);

    /// @name Names that the host treats as animatable
    /// @{

    /// Field discovery offers fields of these names. Names are compared byte by byte. Cost: linear in the
    /// names.
    bool isAnimationAttribute(const std::string& name) const;
    void addAnimationAttribute(std::string name);
    void addAnimationAttributes(std::string names); ///< Comma separated, taken exactly as they stand.
    void subAnimationAttribute(const std::string& name);
    const std::vector<std::string>& getAnimationAttributes() const;
    /// @}

    // Scene synchronisation: what the scene's nodes list stays, the rest can be swept.

    /// Visitor that takes in what one node lists; always goes on.
    static osg::Action::ResultE collectActualObjectsAndFields(const osg::NodePtr& node);
    /// Marks what the nodes from the scene root down list. Objects are marked anew each time; fields only
    /// ever become more. Without a scene root the last marks stay. Cost: O(n log n) in what the nodes list.
    void updateActualSceneObjectsAndFields();
    /// Marks, then destroys what no node lists: objects that stand in no other and are not internal, each
    /// with its subtree, then fields. Clips are never swept, nor is a field that any node once listed.
    /// Without a scene root it sweeps by the last marks, everything when there are none.
    void destroyUnreferencedObjectsAndFields();
    /// Destroys the objects and fields that the node lists; with `recursive` those of its descendants too. A
    /// node without animation attachment ends the descent: what is below it stays. The attachments stay.
    void destroyNodeObjects(const osg::NodePtr& node, bool recursive);

    // Copy and paste. The buffer holds registered duplicates that belong to no node; the host is told by
    // `updatePaste` whenever it becomes empty or filled. Each copy clears it first, its old contents
    // destroyed.

    /// Empties the buffer; the duplicates stay registered unless `destroy`. Nothing for an empty buffer.
    void clearCopyBuffer(bool destroy);
    /// Duplicates an object with everything below it into the buffer.
    /// @return false for null (nothing changed), and for a sequence, which cannot be copied.
    bool copy(kaAnimationObject* object);
    /// The same for several, in order; nulls and sequences are left out. @return whether anything was copied.
    bool copy(const std::vector<kaAnimationObject*>& objects);
    /// The same for what a node lists. @return false, with nothing changed, for null and where it lists
    /// nothing.
    bool copy(const osg::NodePtr& node);
    /// Moves the buffer to a node: each curve goes to the node's last field of the same attribute and
    /// component, or keeps its own where there is none, and the node lists the objects. The buffer is empty
    /// afterwards; an empty one is pasted without effect.
    /// @param node the target. @param force whether to paste what `kaAnimationUtils::checkPasteTo` refuses.
    /// @return false, with nothing changed, for a null node and a refused paste.
    bool paste(const osg::NodePtr& node, bool force);
    std::vector<kaAnimationObject*> getCopyBuffer() const; ///< What is still there of it, in order.

    // Connections: what an object's start or end leads to. They are never removed; a freed target leaves its
    // connections without effect.

    /// Has `target` started or stopped when `trigger` of `source` fires. @return false for a null source or
    /// target.
    bool createConnection(kaAnimationObject* source, AnimationTrigger trigger, kaAnimationObject* target,
                          AnimationAction action);
    /// Has `function` called. @return false for a null source or function.
    bool createConnection(kaAnimationObject* source, AnimationTrigger trigger, void (*function)());
    /// Carries out connections in the order given: starting queues an active target for the end of the
    /// controller's next `loop()`, stopping takes the target out of the running objects and leaves its flags
    /// alone. Unknown ids are passed over. Functions that fire triggers again are followed a hundred
    /// levels deep; where each fires several, those below the fourth level 65 536 times in all.
    void executeTriggers(std::vector<kaUID> connectionIDs);
    /// Connection id to (target, action); a destroyed target leaves a null here.
    std::map<kaUID, std::pair<kaAnimationObject*, AnimationAction>> getObjectConnections() const;
    std::map<kaUID, void (*)()> getCallbackConnections() const; ///< Connection id to function.
    /// Moves an object from its track to another, where it may overlap others.
    /// @return false, with nothing changed, for null, for an object that is on no track or for a track below
    /// it.
    bool moveObjectToStreak(kaAnimationObject* object, kaAnimationStreak* streak);
    /// Moves an object from its track to the clip's track of that number. First the clip is given tracks
    /// until it has more children than `number`; they stay, whatever comes of the move.
    /// @return false for null, for a number above 65535, when no track has that number, or as above.
    bool moveObjectToStreak(kaAnimationObject* object, kaAnimationStrip* strip, unsigned int number);
    void objectInfo() const;                                  ///< To standard output.
    void printFieldInfo(const kaAnimationField* field) const; ///< To standard output; nothing for null.

    /// @name Host callbacks
    /// @{

    /// Null until set; a null callback makes the call a no-op. The camera -1 is the active one. Positions are
    /// in the scene's unit, the roll in the host's, progress in percent.
    using GetFromAtUp = void (*)(int camera, osg::Pnt3f& from, osg::Pnt3f& at, osg::Vec3f& up);
    using SetFromAtUp = void (*)(int camera, const osg::Pnt3f& from, const osg::Pnt3f& at,
                                 const osg::Vec3f& up);
    using GetRoll = float (*)(int camera);
    using SetRoll = void (*)(int camera, const float& roll);
    using ShowCurves = void (*)(const std::vector<kaAnimationCurve2D*>& curves);
    using FileIOProgress = void (*)(unsigned int percent);
    using UpdatePaste = void (*)(bool filled);

    static void setGetFromAtUpCB(GetFromAtUp callback);
    static void setFromAtUpCB(SetFromAtUp callback);
    static void setGetRollCB(GetRoll callback);
    static void setRollCB(SetRoll callback);
    static void setShowCurvesCB(ShowCurves callback);
    static void setFileIOProgressCB(FileIOProgress callback);
    static void setUpdatePasteCB(UpdatePaste callback);

    void setFromAtUp(const osg::Pnt3f& from, const osg::Pnt3f& at, const osg::Vec3f& up);
    void getFromAtUp(osg::Pnt3f& from, osg::Pnt3f& at, osg::Vec3f& up); ///< Zeros without callback.
    void setRoll(float roll);
    void getRoll(float& roll); ///< 0 without callback.
    void showCurves(const std::vector<kaAnimationCurve2D*>& curves);
    void setFileIOProgress(unsigned int percent);
    void updatePaste(bool filled);
    /// @}

    // Documents.

    /// The whole registry as an animation document: what `QDomDocument::toString(1)` gives for its elements,
    /// with attributes in one fixed order, so that the same registry gives the same text on every run.
    /// Changes nothing. Prints "creating animation xml..." to standard output.
    /// @return the text; empty when it is longer than a `QString` holds or memory runs out.
    /// Cost: O(n log n).
    QString createAnimationXML();
    /// Writes the document to `path` (bytes taken as Latin-1) as Latin-1 without an XML declaration. The file
    /// is written in place: for one that must survive a failure write a new file and rename it.
    /// @return whether the file could be opened and memory sufficed; where it did not, the file holds the
    /// front of the document. A short or failed write is not detected. Cost: as `createAnimationXML`, with
    /// memory for the order of the ids alone.
    bool saveAnimations(const char* path);
    /// Asks for the file and adds ".xml" unless the name ends so. The name's UTF-8 bytes go to the form
    /// above, which takes them as Latin-1: outside ASCII the file gets another name than the one chosen.
    /// @return false when the question was cancelled or `kaFile::checkWrite` refuses the file.
    bool saveAnimations(QWidget* parent);

    /// Receives a document's text piece by piece.
    using DocumentSink = std::function<void(std::string_view)>;
    /// Is told before each element how many are written with it, of how many.
    using DocumentProgress = std::function<void(std::size_t done, std::size_t total)>;
    /// The document that `saveAnimations` writes, to anything that takes text. Changes and prints nothing.
    /// @param sink gets Latin-1 text; what it throws comes back to the caller.
    /// @param progress may be null. @note Neither may change the registry.
    void writeAnimations(const DocumentSink& sink, const DocumentProgress& progress = nullptr) const;
    /// The same document, element by element and without its type, for callers that look at what is written
    /// or keep it in a form of their own.
    void describeAnimations(kaAnimationXmlOutput& output, const DocumentProgress& progress = nullptr) const;

    /// Adds a document to the registry; nothing registered goes. Ids that are taken are replaced by fresh
    /// ones, while references go on to mean the ids as written: a document that is loaded twice connects its
    /// first set again and leaves the second unconnected. Keys that are not `TANGENT_USER` get their handles
    /// recomputed.
    ///
    /// Text is taken as `QDomDocument::setContent` takes it; a file that neither declares an encoding nor is
    /// valid UTF-8 is read as Latin-1. Prints "loading animation elements: " and the count that the document
    /// states. The progress callback is called after every element of both passes and may do anything,
    /// loading included.
    /// @param source file name or document.
    /// @param isFile whether `source` is a file name or the text itself.
    /// @return false, with nothing changed, for an empty source, a file that cannot be opened or is too
    /// large, and text that is not well-formed, declares entities or nests elements deeper than 256.
    /// Cost:  O(n log n); about half the time of `QDomDocument::setContent` and a tenth of its memory, the
    /// objects aside.
    bool loadAnimations(const QString& source, bool isFile);
    bool loadAnimations(QWidget* parent); ///< Asks for the file.
    /// Why the last `loadAnimations` gave false, and where; an empty message after one that gave true.
    static const kaDocumentFault& getLoadFault();

    /// Largest file, in bytes, that loading accepts; default 1 GiB.
    static void setMaximumFileSize(unsigned long long bytes);
    static unsigned long long getMaximumFileSize(); ///< Bytes.

    /// Asks the user for a file name; an empty answer means cancelled.
    using AskFileName = QString (*)(QWidget* parent, const QString& title, const QString& filter,
                                    bool saving);
    /// Puts the host in charge of that question; null gives it back to `QFileDialog`.
    static void setAskFileNameCB(AskFileName callback);

    /// @name Elements
    /// @{

    /// The writers give an element of `document` that is attached to nothing, the bare tag for null, and for
    /// a curve whose field is not registered. The readers register what they read; they give null for a null
    /// element and one of another "typeID".
    QDomElement createFieldDomElement(QDomDocument& document, kaAnimationField* field);
    QDomElement createPointDomElement(QDomDocument& document, kaControlPoint2D* point);
    QDomElement createCurveDomElement(QDomDocument& document, kaAnimationCurve2D* curve);
    QDomElement createBlockDomElement(QDomDocument& document, kaAnimationUnit* unit);
    QDomElement createTrackDomElement(QDomDocument& document, kaAnimationStreak* streak);
    QDomElement createClipDomElement(QDomDocument& document, kaAnimationStrip* strip);
    QDomElement createSequenceDomElement(QDomDocument& document, kaAnimationSequence* sequence);

    kaAnimationField* readFieldDomElement(const QDomElement& element);
    kaControlPoint2D* readPointDomElement(const QDomElement& element);
    kaAnimationCurve2D* readCurveDomElement(const QDomElement& element);
    kaAnimationUnit* readBlockDomElement(const QDomElement& element);
    kaAnimationStreak* readTrackDomElement(const QDomElement& element);
    kaAnimationStrip* readClipDomElement(const QDomElement& element);
    kaAnimationSequence* readSequenceDomElement(const QDomElement& element);
    /// Second pass: connects the registered object that the element's "id" names with the objects that its
    /// children name. One that it holds already is not added again; one that another container holds leaves
    /// that first, but a key may stay listed by two curves and belongs to the one that took it last.
    void readChildren(const QDomElement& element);
    /// @}

    // Animations that older scenes carry in the scene graph.

    /// Converts the older animation of the root and of every node below it, takes the older attachments off
    /// and reports progress.
    /// @param root of the scene; null does nothing.
    /// @param camera gets the animation of the scene's old camera; null drops it with one line on standard
    /// output.
    /// @param nodeCount how many nodes the scene has, for the progress; any number is safe.
    void importORVAAnimations(const osg::NodePtr& root, const osg::NodePtr& camera, unsigned int nodeCount);
    /// Visitor that converts one node; always goes on.
    static osg::Action::ResultE collectORVAAnimations(const osg::NodePtr& node);

    /// @name Converters
    /// @{

    /// One container of the older format as a registered object, added to `parent` unless that is null. Null
    /// where the container is null or leads back into itself. `getImportReport` counts what was made and left
    /// out.
    kaAnimationStrip* importClip(const osg::AnimationClipPtr& clip, kaAnimationStreak* parent);
    kaAnimationStreak* importTrack(const osg::AnimationTrackPtr& track, kaAnimationStrip* parent);
    kaAnimationUnit* importBlock(const osg::AnimationBlockPtr& block, kaAnimationStreak* parent);
    kaAnimationSequence* importSequence(const osg::AnimationBlockPtr& block, kaAnimationStreak* parent);
    kaAnimationCurve2D* importCurve(const osg::AnimationCurvePtr& curve, kaAnimationUnit* unit,
                                    osg::NodePtr node);
    kaControlPoint2D* importPoint(const osg::AnimationControlPointPtr& point, kaAnimationCurve2D* curve);
    /// @}
    /// What the last `importORVAAnimations` made and left out.
    static const kaImportReport& getImportReport();

  private:
    kaAnimationManager();

    friend class kaAnimationScene;
    /// `loadAnimations`, which calls `begin` once the document is known to be one, before it makes anything.
    bool load(const QString& source, bool isFile, const std::function<void()>& begin);
    kaUID createConnectionID();
    kaUID freshIDFor(kaUID taken, bool isField);

    static ShowCurves _showCurvesFP;
    static FileIOProgress _progressFP;
    static UpdatePaste _updatePasteFP;
    static unsigned int _importNodeCount;
    static unsigned int _nodeCounter;

    kaUID _changeFromID = 0;
    kaUID _changeToID = 0;
    std::unique_ptr<kaSceneSync> _sceneSync;
    std::unique_ptr<kaConnections> _connections;
    /// The duplicates that wait to be pasted, in the order they were copied; the registry owns them. Counts
    /// as filled until it is pasted or cleared, whatever is freed meanwhile: the host hears of it just then.
    std::unique_ptr<kaWeakList<kaAnimationObject>> _copyBuffer;
};
