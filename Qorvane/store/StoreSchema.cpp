#include "store/StoreSchema.h"

namespace Qorvane::StoreSchema {

// Tags and ratings stand by their path alone, without foreign keys: a file may be tagged or rated before it
// has a vector. images.mtime counts from 1970, tag_vectors.created_time from 2001; nothing compares the two.
const char *script()
{
    return R"sql(
CREATE TABLE IF NOT EXISTS images(
    path TEXT PRIMARY KEY,
    thumbnail_path TEXT,
    vector BLOB NOT NULL,
    dim INTEGER NOT NULL,
    mtime REAL NOT NULL
);
CREATE INDEX IF NOT EXISTS idx_images_mtime ON images(mtime);

-- Tags table: store one row per (path, tag)
CREATE TABLE IF NOT EXISTS image_tags(
    path TEXT NOT NULL,
    tag TEXT NOT NULL,
    PRIMARY KEY(path, tag)
);
CREATE INDEX IF NOT EXISTS idx_image_tags_tag ON image_tags(tag);
CREATE INDEX IF NOT EXISTS idx_image_tags_path ON image_tags(path);

-- Ratings table: store one row per image path with rating 1-5
CREATE TABLE IF NOT EXISTS image_ratings(
    path TEXT PRIMARY KEY,
    rating INTEGER NOT NULL CHECK(rating >= 1 AND rating <= 5)
);
CREATE INDEX IF NOT EXISTS idx_image_ratings_rating ON image_ratings(rating);

-- App settings key-value table
CREATE TABLE IF NOT EXISTS app_settings(
    key TEXT PRIMARY KEY,
    value TEXT
);

-- Tag vectors table: store precomputed tag vectors
CREATE TABLE IF NOT EXISTS tag_vectors(
    tag TEXT PRIMARY KEY,
    vector BLOB NOT NULL,
    dim INTEGER NOT NULL,
    created_time REAL NOT NULL
);
CREATE INDEX IF NOT EXISTS idx_tag_vectors_created_time ON tag_vectors(created_time);
)sql";
}

} // namespace Qorvane::StoreSchema
