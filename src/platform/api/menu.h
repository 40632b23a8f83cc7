/* Menus: menu bars and pop-up menus of text items, separators and submenus.
 *
 * A menu is a user object named by an HMENU; it lives until DestroyMenu, or
 * until the window that holds it or the menu it is a submenu of is
 * destroyed. Items are addressed by zero-based position (MF_BYPOSITION) or
 * by command identifier (MF_BYCOMMAND, the default), which searches the
 * menu and then its submenus depth first and takes the first match.
 *
 * Failures set the last error: ERROR_INVALID_MENU_HANDLE for a handle that
 * names no menu, ERROR_MENU_ITEM_NOT_FOUND for a missing item.
 * Menus are drawn by nobody yet: bitmap and owner-drawn items are refused
 * with ERROR_NOT_SUPPORTED. All functions are thread-safe. */
#ifndef ZQ_PLATFORM_API_MENU_H
#define ZQ_PLATFORM_API_MENU_H

#include "platform/api/types.h"

/* Item flags. */
#define MF_INSERT 0x00000000L
#define MF_CHANGE 0x00000080L
#define MF_APPEND 0x00000100L
#define MF_DELETE 0x00000200L
#define MF_REMOVE 0x00001000L
#define MF_BYCOMMAND 0x00000000L
#define MF_BYPOSITION 0x00000400L
#define MF_SEPARATOR 0x00000800L
#define MF_ENABLED 0x00000000L
#define MF_GRAYED 0x00000001L
#define MF_DISABLED 0x00000002L
#define MF_UNCHECKED 0x00000000L
#define MF_CHECKED 0x00000008L
#define MF_USECHECKBITMAPS 0x00000200L
#define MF_STRING 0x00000000L
#define MF_BITMAP 0x00000004L
#define MF_OWNERDRAW 0x00000100L
#define MF_POPUP 0x00000010L
#define MF_MENUBARBREAK 0x00000020L
#define MF_MENUBREAK 0x00000040L
#define MF_UNHILITE 0x00000000L
#define MF_HILITE 0x00000080L
#define MF_DEFAULT 0x00001000L

#define ERROR_MENU_ITEM_NOT_FOUND 1456L

ZQ_EXTERN_C_BEGIN

/* A new empty menu bar / pop-up menu; NULL when out of handles. */
ZQ_API HMENU WINAPI CreateMenu(void);
ZQ_API HMENU WINAPI CreatePopupMenu(void);
/* Destroys the menu and, with it, every submenu it holds. */
ZQ_API BOOL WINAPI DestroyMenu(HMENU hMenu);
ZQ_API BOOL WINAPI IsMenu(HMENU hMenu);

/* Appends / inserts an item: a text (MF_STRING, lpNewItem the text, NULL
 * taken as empty), a separator (MF_SEPARATOR, no text, id kept) or a
 * submenu (MF_POPUP, uIDNewItem is its HMENU, which the menu then owns).
 * InsertMenuA puts the item before the one at uPosition; a position past
 * the end (or (UINT)-1 with MF_BYPOSITION) appends. */
ZQ_API BOOL WINAPI AppendMenuA(HMENU hMenu, UINT uFlags, UINT_PTR uIDNewItem, LPCSTR lpNewItem);
ZQ_API BOOL WINAPI InsertMenuA(HMENU hMenu, UINT uPosition, UINT uFlags, UINT_PTR uIDNewItem,
                               LPCSTR lpNewItem);
/* Removes an item; DeleteMenu also destroys a submenu the item held,
 * RemoveMenu hands it back to the caller's care. */
ZQ_API BOOL WINAPI DeleteMenu(HMENU hMenu, UINT uPosition, UINT uFlags);
ZQ_API BOOL WINAPI RemoveMenu(HMENU hMenu, UINT uPosition, UINT uFlags);

/* Number of items, -1 for a bad handle. */
ZQ_API int WINAPI GetMenuItemCount(HMENU hMenu);
/* Command identifier of the item at nPos: 0 for a separator, (UINT)-1 for
 * a submenu, a bad position or a bad handle. */
ZQ_API UINT WINAPI GetMenuItemID(HMENU hMenu, int nPos);
/* The submenu at nPos, NULL when that item holds none. */
ZQ_API HMENU WINAPI GetSubMenu(HMENU hMenu, int nPos);
/* Copies the item's text into lpString (at most cchMax - 1 characters plus
 * the terminator) and returns the characters copied; with lpString NULL
 * returns the text's length. 0 when the item is missing. */
ZQ_API int WINAPI GetMenuStringA(HMENU hMenu, UINT uIDItem, LPSTR lpString, int cchMax, UINT flags);
/* The item's flags (MF_GRAYED, MF_DISABLED, MF_CHECKED, MF_SEPARATOR,
 * MF_POPUP ...); for a submenu the high byte holds its item count.
 * (UINT)-1 when the item is missing. */
ZQ_API UINT WINAPI GetMenuState(HMENU hMenu, UINT uId, UINT uFlags);
/* Set MF_ENABLED / MF_GRAYED / MF_DISABLED; returns the previous state of
 * those bits, (UINT)-1 when the item is missing. */
ZQ_API BOOL WINAPI EnableMenuItem(HMENU hMenu, UINT uIDEnableItem, UINT uEnable);
/* Sets MF_CHECKED or MF_UNCHECKED; returns the previous one, (DWORD)-1
 * when the item is missing. */
ZQ_API DWORD WINAPI CheckMenuItem(HMENU hMenu, UINT uIDCheckItem, UINT uCheck);

ZQ_EXTERN_C_END

#endif /* ZQ_PLATFORM_API_MENU_H */
