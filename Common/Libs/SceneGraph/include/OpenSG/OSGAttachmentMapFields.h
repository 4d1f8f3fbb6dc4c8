#pragma once

#include <OpenSG/OSGSField.h>

namespace osg {

using SFAttachmentMap = SField<AttachmentMap>;
extern template class SField<AttachmentMap>;

} // namespace osg
