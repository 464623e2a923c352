// The program's compiled resources as they stand in its file: the records that the resource
// compiler writes, from `begin` to `end`.
#pragma once

struct EmbeddedResources {
    const void* begin;
    const void* end;
};

EmbeddedResources GetEmbeddedResources();
