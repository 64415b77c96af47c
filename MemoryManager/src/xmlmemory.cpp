// The XML documents of the library (settings repositories, subscription files) take their memory
// from the process-wide memory manager, so that they count in GetOutstandingBlocks and take
// part in allocation-failure injection like every other allocation point.
//
// pugixml keeps its allocation functions in one global of the pugixml copy that is linked. The
// library links a private copy (the static archive, with its symbols kept local on Linux and
// unexported from the Windows DLL), so this setting reaches only the library's own documents: a
// program that uses pugixml itself keeps its own functions, and may set them as it likes. The
// functions are set once, while the library loads, before any document of the library exists,
// as pugixml requires; nothing else in the library sets them.
#include "Util/Compiler.h"
#include "Util/MemoryManager.h"

#include <pugixml.hpp>

namespace Util {
namespace {

void* AllocateXml(std::size_t bytes) {
    return GetMemoryManager().Allocate(bytes);
}

void FreeXml(void* block) {
    GetMemoryManager().Free(block);
}

struct XmlMemoryRouting {
    XmlMemoryRouting() { pugi::set_memory_management_functions(AllocateXml, FreeXml); }
};

ZT_INIT_PRIORITY(201)
const XmlMemoryRouting g_xmlMemoryRouting;

} // namespace
} // namespace Util
