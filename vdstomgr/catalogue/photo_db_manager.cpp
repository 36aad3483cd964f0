#include "vdstomgr/catalogue/photo_db_manager.h"

CRkPhotoDBManager::~CRkPhotoDBManager() = default;
