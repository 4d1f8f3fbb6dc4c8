#pragma once

#include <OpenSG/OSGAttachment.h>
#include <OpenSG/OSGMFSysTypes.h>
#include <OpenSG/OSGSFSysTypes.h>

namespace osg {

/// The picture that a material's diffuse colour is multiplied with, laid out by texture coordinates whose origin is the
/// upper left corner; on the material. One of file name and bytes is empty.
class KA_SCENEGRAPH_API Picture : public Container<Picture, Attachment> {
  public:
    static constexpr const Char8* TypeName = "Picture";
    enum : UInt32 { FileNameFieldId = Inherited::NextFieldId, BytesFieldId, NextFieldId };
    static constexpr BitVector FileNameFieldMask = fieldMask(FileNameFieldId);
    static constexpr BitVector BytesFieldMask = fieldMask(BytesFieldId);

    static FieldContainerType& getClassType();

    /// Path of the file when the model was read.
    /// @{
    const std::string& getFileName() const { return _sfFileName.getValue(); }
    void setFileName(const std::string& fileName) { _sfFileName.setValue(fileName); }
    const SFString* getSFFileName() const { return &_sfFileName; }
    /// @}

    /// A PNG or JPEG file that the model itself held.
    /// @{
    const MFUInt8* getMFBytes() const { return &_mfBytes; }
    MFUInt8* editMFBytes() { return &_mfBytes; }
    /// @}

  protected:
    Picture() = default;
    Picture(const Picture&) = default;
    ~Picture() override = default;

  private:
    friend struct ContainerAccess;

    SFString _sfFileName;
    MFUInt8 _mfBytes;
};

using PicturePtr = FCPtr<AttachmentPtr, Picture>;

} // namespace osg
