// services/recordsource/dbf/cdxindex_p.h: what the parts of CdxIndex share.
#pragma once

#include "services/recordsource/dbf/internal/cdxindex.h"

#include "services/recordsource/dbf/cdxtree_p.h"

namespace plx {

struct CdxIndex::Compiled
{
    XbaseExpression key;
    std::optional<XbaseExpression> filter; // the FOR clause
    char pad = ' ';
};

namespace cdxindex {

// The B-tree of `tag` over `pages`.
inline cdxtree::Tag treeTag(const CdxTag &tag, char pad)
{
    return { tag.headerOffset, tag.keyLength, pad };
}

} // namespace cdxindex

} // namespace plx
