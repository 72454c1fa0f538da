#include "gl/DrawTablesGL.h"

#include <renderengine/OverallAttribute.h>

#include <kavelor/SbDataType.h>

namespace renderengine
{

namespace
{

using SendAttribute = void (*)(GLuint location, const void* value);

struct AttributeEntry
{
    uint8_t componentCount;
    bool normalized;
    SbDataType::Type dataType;
    SendAttribute send;
};

// The entry points are looked up in the current context's table at each call, so the rows hold calls and not pointers.
#define ATTRIBUTE_ENTRY(COMPONENTS, NORMALIZED, DATA_TYPE, FUNCTION, VALUE_TYPE)                                  \
    AttributeEntry                                                                                                \
    {                                                                                                             \
        COMPONENTS, NORMALIZED, SbDataType::DATA_TYPE,                                                            \
            [](GLuint location, const void* value) { FUNCTION(location, static_cast<const VALUE_TYPE*>(value)); } \
    }

const AttributeEntry attributeEntries[] = {
    ATTRIBUTE_ENTRY(1, false, UNSIGNED_INT, glVertexAttribI1uiv, GLuint),
    ATTRIBUTE_ENTRY(1, false, SHORT, glVertexAttrib1sv, GLshort),
    ATTRIBUTE_ENTRY(1, false, INT, glVertexAttribI1iv, GLint),
    ATTRIBUTE_ENTRY(1, false, FLOAT, glVertexAttrib1fv, GLfloat),
    ATTRIBUTE_ENTRY(1, false, DOUBLE, glVertexAttrib1dv, GLdouble),

    ATTRIBUTE_ENTRY(2, false, UNSIGNED_INT, glVertexAttribI2uiv, GLuint),
    ATTRIBUTE_ENTRY(2, false, SHORT, glVertexAttrib2sv, GLshort),
    ATTRIBUTE_ENTRY(2, false, INT, glVertexAttribI2iv, GLint),
    ATTRIBUTE_ENTRY(2, false, FLOAT, glVertexAttrib2fv, GLfloat),
    ATTRIBUTE_ENTRY(2, false, DOUBLE, glVertexAttrib2dv, GLdouble),

    ATTRIBUTE_ENTRY(3, false, UNSIGNED_INT, glVertexAttribI3uiv, GLuint),
    ATTRIBUTE_ENTRY(3, false, SHORT, glVertexAttrib3sv, GLshort),
    ATTRIBUTE_ENTRY(3, false, INT, glVertexAttribI3iv, GLint),
    ATTRIBUTE_ENTRY(3, false, FLOAT, glVertexAttrib3fv, GLfloat),
    ATTRIBUTE_ENTRY(3, false, DOUBLE, glVertexAttrib3dv, GLdouble),

    ATTRIBUTE_ENTRY(4, false, UNSIGNED_BYTE, glVertexAttrib4ubv, GLubyte),
    ATTRIBUTE_ENTRY(4, false, UNSIGNED_SHORT, glVertexAttrib4usv, GLushort),
    ATTRIBUTE_ENTRY(4, false, UNSIGNED_INT, glVertexAttrib4uiv, GLuint),
    ATTRIBUTE_ENTRY(4, false, BYTE, glVertexAttrib4bv, GLbyte),
    ATTRIBUTE_ENTRY(4, false, SHORT, glVertexAttrib4sv, GLshort),
    ATTRIBUTE_ENTRY(4, false, INT, glVertexAttrib4iv, GLint),
    ATTRIBUTE_ENTRY(4, false, FLOAT, glVertexAttrib4fv, GLfloat),
    ATTRIBUTE_ENTRY(4, false, DOUBLE, glVertexAttrib4dv, GLdouble),

    ATTRIBUTE_ENTRY(4, true, UNSIGNED_BYTE, glVertexAttrib4Nubv, GLubyte),
    ATTRIBUTE_ENTRY(4, true, UNSIGNED_SHORT, glVertexAttrib4Nusv, GLushort),
    ATTRIBUTE_ENTRY(4, true, UNSIGNED_INT, glVertexAttrib4Nuiv, GLuint),
    ATTRIBUTE_ENTRY(4, true, BYTE, glVertexAttrib4Nbv, GLbyte),
    ATTRIBUTE_ENTRY(4, true, SHORT, glVertexAttrib4Nsv, GLshort),
    ATTRIBUTE_ENTRY(4, true, INT, glVertexAttrib4Niv, GLint),
    ATTRIBUTE_ENTRY(4, true, FLOAT, glVertexAttrib4fv, GLfloat),
    ATTRIBUTE_ENTRY(4, true, DOUBLE, glVertexAttrib4dv, GLdouble),
};

#undef ATTRIBUTE_ENTRY

} // namespace

void applyOverallAttribute(GLuint location, const OverallAttribute& attribute)
{
    // Only attributes of four components know the normalised form.
    const bool normalized = attribute.componentCount == 4 && attribute.normalized != 0;
    for (const AttributeEntry& entry : attributeEntries)
    {
        if (entry.componentCount == attribute.componentCount && entry.normalized == normalized &&
            entry.dataType == attribute.dataType.getType())
        {
            entry.send(location, &attribute.value);
            return;
        }
    }
}

} // namespace renderengine
