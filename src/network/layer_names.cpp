#include "network/layer_names.h"

#include "core/names.h"
#include "core/text.h"

#include <initializer_list>

namespace gridforge::network {

namespace {

// The heads are tried in their order, case counting.
std::string renamed(std::string_view layer, std::initializer_list<std::string_view> heads, std::string_view head)
{
    const std::string name = FILENAMEEXT(layer);
    for (const std::string_view known : heads) {
        if (name.starts_with(known)) {
            return cut(join(FILEFOLDERPATH(layer), head, name.substr(known.size())), kNameWidth);
        }
    }
    return cut(join(FILEFOLDERPATH(layer), head, FILENAME(layer)), kNameWidth);
}

} // namespace

std::string nwkLayerName(std::string_view branchLayer)
{
    return renamed(branchLayer, {"1d_branches", "1d_br"}, "1d_nwk");
}

std::string xsLayerName(std::string_view sectionLayer)
{
    return renamed(sectionLayer, {"1d_xs", "1d_tab", "1d_cut"}, "1d_xs");
}

} // namespace gridforge::network
