#pragma once

#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGSFVecTypes.h>

namespace osg {

/// Moves everything below its node by a matrix.
class KA_SCENEGRAPH_API Transform : public Container<Transform, Group> {
  public:
    static constexpr const Char8* TypeName = "Transform";
    enum : UInt32 { MatrixFieldId = Inherited::NextFieldId, NextFieldId };
    static constexpr BitVector MatrixFieldMask = fieldMask(MatrixFieldId);

    static FieldContainerType& getClassType();

    /// Applied to the coordinates inside the node.
    /// @{
    const Matrix& getMatrix() const { return _sfMatrix.getValue(); }
    Matrix& getMatrix() { return _sfMatrix.getValue(); }
    Matrix& editMatrix() { return _sfMatrix.getValue(); }
    void setMatrix(const Matrix& matrix) { _sfMatrix.setValue(matrix); }
    const SFMatrix* getSFMatrix() const { return &_sfMatrix; }
    SFMatrix* getSFMatrix() { return &_sfMatrix; }
    SFMatrix* editSFMatrix() { return &_sfMatrix; }
    /// @}

    /// The matrix, whatever the node.
    bool getLocalMatrix(const Node& node, Matrix& matrix) const override;

  protected:
    Transform() = default;
    Transform(const Transform&) = default;
    ~Transform() override = default;

  private:
    friend struct ContainerAccess;

    SFMatrix _sfMatrix;
};

} // namespace osg
